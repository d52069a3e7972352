// Documents checked against a schema by a Python script.
#include "tests/tool/schema.hpp"

#include <cstdlib>
#include <sstream>

namespace nadir::test {

namespace {

// Calls f(place) for every object in there.
template <class F>
void forEachObject(const Json& json, const Json::json_pointer& place, const F& f) {
  if (json.is_object()) {
    f(place);
    for (const auto& [key, value] : json.items()) forEachObject(value, place / key, f);
  } else if (json.is_array()) {
    for (size_t i = 0; i < json.size(); ++i) forEachObject(json[i], place / i, f);
  }
}

}  // namespace

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

std::vector<Spoilt> spoilt(const Json& good, const std::string& optional) {
  std::vector<Spoilt> all;
  const auto add = [&](const Json::json_pointer& place, const std::string& how, const auto& change) {
    all.push_back({how + " in \"" + place.to_string() + "\"", good});
    change(all.back().document[place]);
  };
  forEachObject(good, Json::json_pointer(), [&](const Json::json_pointer& place) {
    for (const auto& item : good[place].items()) {
      const std::string key = item.key();
      if (key != optional) add(place, "no " + key, [&](Json& object) { object.erase(key); });
      add(place, "another kind of " + key, [&](Json& object) { object[key] = Json::array({true}); });
    }
  });
  return all;
}

Json extended(const Json& good) {
  Json more = good;
  forEachObject(good, Json::json_pointer(), [&](const Json::json_pointer& place) { more[place]["surprise"] = 1; });
  return more;
}

Json warned(const Json& good) {
  Json more = good;
  more["warnings"] = {{{"id", "dark"}, {"sentence", "it is dark"}, {"numbers", Json::object()}}};
  return more;
}

void expectMisfits(const std::string& schemaFile, const std::vector<Spoilt>& documents) {
  std::vector<Json> all;
  for (const Spoilt& spoilt : documents) all.push_back(spoilt.document);
  const std::vector<std::string> found = mistakes(schemaFile, all);
  for (size_t i = 0; i < found.size(); ++i) EXPECT_NE(found[i], "") << documents[i].how;
}

}  // namespace nadir::test
