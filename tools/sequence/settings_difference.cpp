// The first difference of two JSON objects, in words.
#include "tools/sequence/settings_difference.hpp"

#include <nlohmann/json.hpp>

namespace nadir::tool {

namespace {

using Json = nlohmann::ordered_json;  // the camera before what follows from it

// JSON Patch (RFC 6902) calls the place behind a list's end "-".
Json::json_pointer firstDifference(const Json& earlier, const Json& patch) {
  Json::json_pointer place(patch.front().at("path").get<std::string>());
  if (place.back() != "-") return place;
  place.pop_back();
  return place / earlier[place].size();
}

// Lists and tables are too long for a sentence.
std::string valueAt(const Json& settings, const Json::json_pointer& place) {
  if (!settings.contains(place)) return "missing";
  const Json& value = settings[place];
  return value.is_structured() ? "given" : value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// Text that is no JSON, or tells of no program, names none.
std::string softwareOf(const std::string& settings) {
  const Json json = Json::parse(settings, nullptr, false);
  return json.is_object() && json.contains("software") && json["software"].is_string() ? json["software"] : "";
}

}  // namespace

std::string otherVersion(const std::string& there, const std::string& here) {
  const std::string begun = softwareOf(there);
  return begun == softwareOf(here) ? "" : begun;
}

std::string settingsDifference(const std::string& there, const std::string& here) {
  const Json earlier = Json::parse(there, nullptr, false), now = Json::parse(here, nullptr, false);
  if (!earlier.is_object()) return "it is no JSON object";
  const Json patch = Json::diff(earlier, now);
  if (patch.empty()) return "";  // members may stand in another order
  const Json::json_pointer place = firstDifference(earlier, patch);
  return place.to_string().substr(1) + " is " + valueAt(earlier, place) + " there and " + valueAt(now, place) + " here";
}

}  // namespace nadir::tool
