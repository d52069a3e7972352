// Prints Markdown.
#include "bench/table_head.hpp"

#include <cstdio>

namespace nadir::bench {

void printHead(const std::vector<const char*>& names, const std::vector<Level>& columns) {
  for (const char* name : names) std::printf("| %s ", name);
  for (const Level& level : columns) std::printf("| %s ", level.name.c_str());
  std::printf("|\n");
  for (size_t i = 0; i < names.size(); ++i) std::printf("|---");
  for (size_t i = 0; i < columns.size(); ++i) std::printf("|--:");
  std::printf("|\n");
}

}  // namespace nadir::bench
