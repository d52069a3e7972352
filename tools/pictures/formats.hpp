// The formats of picture files that are read: a new one is one more row of the table in formats.cpp.
#pragma once

#include <string>
#include <vector>

#include "tools/files/files.hpp"
#include "tools/pictures/raster.hpp"

namespace nadir::tool {

struct PictureFormat {
  std::vector<const char*> endings;  // of its files' names, in small letters
  const char* name;                  // with its article, before the word "picture" in the sentence about a file of none
  bool (*probe)(const Bytes&);       // true where the bytes begin as a picture of this format does
  Raster (*decode)(const Bytes&);    // throws Error with the reason alone, for a sentence that names the file
};

// Of a file's name, ".png", in small letters.
std::string endingOf(const std::string& name);

// True for the name of a file that ends as pictures do, in small or in capital letters.
bool hasPictureEnding(const std::string& name);

// The picture, whichever format it has. Throws Error with the reason alone.
Raster decodedPicture(const Bytes& bytes);

}  // namespace nadir::tool
