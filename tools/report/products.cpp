// The words of --write and which source has what they name.
#include "tools/report/products.hpp"

#include <algorithm>
#include <iterator>
#include <sstream>
#include <vector>

#include "tools/base/error.hpp"

namespace nadir::tool {

namespace {

struct ProductRow {
  Product product;
  const char* name;
  bool ofPair, ofSequence;
};

constexpr ProductRow rows[] = {
    {Product::map, "map", true, true},
    {Product::average, "average", false, true},
    {Product::regions, "regions", true, false},
    {Product::preview, "preview", true, false},
    {Product::disparity, "disparity", true, false},
    {Product::points, "points", true, false},
    {Product::npy, "npy", true, false},
    {Product::pfm, "pfm", true, false},
};

bool isOf(const ProductRow& row, Source source) { return source == Source::pair ? row.ofPair : row.ofSequence; }

Products allOf(Source source) {
  Products products;
  for (const ProductRow& row : rows)
    if (isOf(row, source)) products.insert(row.product);
  return products;
}

std::string namesOf(Source source) {
  std::string names;
  for (const ProductRow& row : rows)
    if (isOf(row, source)) names += (names.empty() ? "" : ", ") + std::string(row.name);
  return names;
}

std::vector<std::string> wordsIn(const std::string& text) {
  std::vector<std::string> words;
  std::istringstream in(text);
  for (std::string word; std::getline(in, word, ',');) words.push_back(word);
  return words;
}

const ProductRow* rowNamed(const std::string& word) {
  const auto* row = std::find_if(std::begin(rows), std::end(rows), [&](const ProductRow& r) { return word == r.name; });
  return row == std::end(rows) ? nullptr : row;
}

}  // namespace

std::string productNames() {
  std::string names;
  for (const ProductRow& row : rows) names += std::string(row.name) + ", ";
  return names + "all, none";
}

std::string mistakeInProducts(const std::string& text) {
  const std::vector<std::string> words = wordsIn(text);
  for (const std::string& word : words) {
    const bool alone = word == "all" || word == "none";
    if (alone && words.size() > 1) return "\"" + word + "\" stands alone";
    if (!alone && !rowNamed(word)) return "\"" + word + "\" is none of " + productNames();
  }
  return words.empty() ? "it names none of " + productNames() : "";
}

Products productsNamed(const std::string& text, Source source) {
  if (text == "all") return allOf(source);
  Products products;
  if (text == "none") return products;
  for (const std::string& word : wordsIn(text)) {
    const ProductRow& row = *rowNamed(word);
    if (!isOf(row, source))
      throw Error("--write " + word + (source == Source::pair ? ": a pair" : ": a sequence") + " has only " +
                  namesOf(source));
    products.insert(row.product);
  }
  return products;
}

Products usualProducts(Source source) {
  Products products = allOf(source);
  for (const Product rarelyRead : {Product::points, Product::npy, Product::pfm}) products.erase(rarelyRead);
  return products;
}

}  // namespace nadir::tool
