// What nadir ground writes beside its numbers, as --write names it.
#pragma once

#include <set>
#include <string>

namespace nadir::tool {

enum class Product { map, average, regions, preview, disparity, points, npy, pfm };
using Products = std::set<Product>;

enum class Source { pair, sequence };

// The words of --write, for help and messages: "map, average, ..."
std::string productNames();

// Why the text is no list of them; empty where it is one.
std::string mistakeInProducts(const std::string& words);

// What the words name for such a source: "all" is everything that it has, "none" nothing. Throws where one is only for
// the other source.
Products productsNamed(const std::string& words, Source source);

// What is written where nothing is named: points and floating-point numbers are large and few read them.
Products usualProducts(Source source);

}  // namespace nadir::tool
