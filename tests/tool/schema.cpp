// Documents checked against a schema by a Python script.
#include "tests/tool/schema.hpp"

#include <cstdlib>
#include <sstream>

namespace nadir::test {

std::vector<std::string> mistakes(const std::string& schemaFile, const std::vector<Json>& documents) {
  const Folder folder;
  std::string lines;
  for (const Json& document : documents) lines += document.dump() + "\n";
  writeFile(folder.path("documents"), lines);
  const std::string command = std::string(NADIR_FITS_SCHEMA) + " '" + schemaFile + "' '" + folder.path("documents") +
                              "' >'" + folder.path("mistakes") + "'";
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
  std::istringstream output(readFile(folder.path("mistakes")));
  std::vector<std::string> mistakes;
  for (std::string line; std::getline(output, line);) mistakes.push_back(line);
  EXPECT_EQ(mistakes.size(), documents.size());
  mistakes.resize(documents.size(), "was not judged");
  return mistakes;
}

}  // namespace nadir::test
