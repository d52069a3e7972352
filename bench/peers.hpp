// Programs of others that do a comparable job, on the same pictures.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "lab/textured_pair.hpp"

namespace nadir::bench {

struct Peer {
  std::string name;     // theirs
  std::string against;  // ours
  std::function<void()> ours, theirs;
};

// Empty in a build without any of them.
std::vector<Peer> peers(const lab::TexturedPair& pair);
std::vector<Peer> componentPeers(uint32_t side);  // of square pictures
std::vector<Peer> polygonPeers();                 // of 1000 x 1000 cells

}  // namespace nadir::bench
