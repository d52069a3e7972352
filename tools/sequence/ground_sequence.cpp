// A run over the frames, which can go on where it was interrupted at any moment.
#include "tools/sequence/ground_sequence.hpp"

#include <nadir/nadir.h>

#include <filesystem>

#include "ground/average.hpp"
#include "tools/base/background.hpp"
#include "tools/base/error.hpp"
#include "tools/base/in_order.hpp"
#include "tools/base/interrupt.hpp"
#include "tools/base/progress.hpp"
#include "tools/base/text.hpp"
#include "tools/files/file_error.hpp"
#include "tools/files/folder_lock.hpp"
#include "tools/files/frame_log.hpp"
#include "tools/pictures/pictures.hpp"
#include "tools/pictures/png.hpp"
#include "tools/report/map_heights.hpp"
#include "tools/report/map_texts.hpp"
#include "tools/road/pair_input.hpp"
#include "tools/sequence/frame_line.hpp"
#include "tools/sequence/settings_difference.hpp"

namespace nadir::tool {

namespace fs = std::filesystem;

namespace {

// The threads hand this over: all that is kept of a frame.
struct Worked {
  std::string error;
  Warnings warnings;
  Grid<uint16_t> heights;
  size_t seenCells = 0;
  Bytes map;  // its file
  std::optional<ground::Findings> findings;
};

// What is written of a frame, which must not hold up the next one.
struct Written {
  size_t frame;
  FrameReport report;
  Bytes map;
  Grid<uint16_t> average;
};

std::optional<double> measuredIn(const ground::Occupancy& area) {
  if (area.covered.cells == 0) return {};
  return area.covered.highestMm;
}

class SequenceRun {
 public:
  SequenceRun(const FrameSource& source, const Road& road, const SequenceOptions& options)
      : source_(source),
        road_(road),
        options_(options),
        times_(options.rule.times, timesBegunWith(), source),
        window_(options.rule.averageFrames),
        tracks_(road.setup.areas.size(), ground::HeightTrack(options.rule.track)) {}

  void go() {
    begin();
    takeUp();
    if (!times_.sentence().empty()) say(times_.sentence());
    tell(times_.warnings());
    work();
    print(table());
    if (done_ < source_.size())
      throw Error(format("interrupted after %zu of %zu frames; the same command with --resume goes on there", done_,
                         source_.size()),
                  interrupted);
    if (skipped_ > 0)
      throw Error(format("%zu of %zu frames were skipped; %s says why", skipped_, done_, logPath().c_str()),
                  notAllReliable);
    if (options_.strict && warned_ > 0)
      throw Error(format("%zu of %zu frames have warnings; %s tells them", warned_, done_, logPath().c_str()),
                  notAllReliable);
    if (options_.strict) throwIfAny(times_.warnings());
  }

 private:
  bool writes(Product product) const { return options_.rule.products.count(product) > 0; }
  std::string settingsPath() const { return options_.folder + "/run.json"; }
  std::string logPath() const { return options_.folder + "/frames.jsonl"; }
  std::string mapPath(const char* kind, size_t frame) const {
    return options_.folder + "/" + kind + "/" + source_.name(frame) + ".png";
  }
  double secondsOf(size_t frame) const { return times_.seconds(source_.number(frame)); }

  // ---- the beginning, or where an earlier run has ended ----

  // A guess could be another one when frames have come since.
  std::optional<TimeUnit> timesBegunWith() const {
    if (!options_.resume || !fs::exists(settingsPath())) return {};
    return timesIn(readText(settingsPath()));
  }

  // The folders are there before run.json tells of them, so that a run that was killed in between can go on too.
  void begin() {
    checkMask();
    checkCamera();
    const std::string settings = settingsText(road_, options_.rule, source_, times_.unit());
    OutputFiles files;
    files.makeFolder(options_.folder);
    lock_.emplace(options_.folder);
    const bool begun = fs::exists(settingsPath()) || fs::exists(logPath());
    if (begun) checkResumable(settings);
    for (const char* folder : {"", "/elevation", "/average"}) removeParts(options_.folder + folder);
    if (!begun) files.write(settingsPath(), bytesOf(settings));
    makeMapFolders();
    files.commit();
  }

  void checkResumable(const std::string& settings) const {
    if (!options_.resume)
      throw Error(options_.folder + " holds a run already: --resume goes on with it, or name another folder");
    const std::string begun = readText(settingsPath()), other = otherVersion(begun, settings);
    if (!other.empty())
      throw Error(
          format("cannot resume: %s was begun by %s, this is %s: go on with that version, or name another "
                 "folder for a run from the beginning",
                 options_.folder.c_str(), other.c_str(), nadir_version()));
    const std::string difference = settingsDifference(begun, settings);
    if (!difference.empty())
      throw Error("cannot resume: " + settingsPath() + " tells of other settings: " + difference);
  }

  void makeMapFolders() const {
    if (writes(Product::map)) fs::create_directory(options_.folder + "/elevation");
    if (writes(Product::average)) fs::create_directory(options_.folder + "/average");
  }

  // A new run has nothing to take up.
  void takeUp() {
    const uintmax_t whole = forEachLine(logPath(), [this](const nlohmann::json& line) { replay(line); });
    if (fs::exists(logPath())) cutOff(whole);
    if (writes(Product::average)) refillWindow();
  }

  void cutOff(uintmax_t whole) const {
    std::error_code error;
    fs::resize_file(logPath(), whole, error);
    if (error) throw fileError("write", logPath(), error.value());
  }

  // These are checked here and not frame by frame: with the wrong file every frame would be damaged.
  void checkMask() const {
    if (road_.options.mask.empty()) return;
    const Grid<uint8_t> mask = readMask(road_.options.mask);
    if (mask.width != road_.setup.camera.widthPx || mask.height != road_.setup.camera.heightPx)
      throw Error(format("the mask %s is %s pixels, but the camera of %s takes pictures of %s",
                         road_.options.mask.c_str(), sizeText(mask.width, mask.height).c_str(),
                         road_.options.camera.c_str(),
                         sizeText(road_.setup.camera.widthPx, road_.setup.camera.heightPx).c_str()));
  }

  // The first frame that can be read tells.
  void checkCamera() const {
    std::optional<ground::Pair> pair;
    for (size_t frame = 0; frame < source_.size() && !pair; ++frame) pair = readable(frame);
    if (pair) checkSize(*pair, road_);
  }

  std::optional<ground::Pair> readable(size_t frame) const {
    try {
      return readPair(source_.left(frame), source_.right(frame));
    } catch (const Error&) {
      return {};
    }
  }

  // The filters' state follows from what was measured.
  void replay(const nlohmann::json& line) {
    if (done_ >= source_.size() || line.value("frame", uint64_t{0}) != source_.number(done_))
      throw Error("cannot resume: " + logPath() + " tells of other frames");
    const bool damaged = line.contains("error");
    skipped_ += damaged;
    warned_ += !line.at("warnings").empty();
    for (size_t i = 0; i < tracks_.size() && !damaged; ++i) {
      const nlohmann::json& height = line.at("areas").at(i).at("highest_mm");
      tracks_[i].step(secondsOf(done_), height.is_null() ? std::optional<double>() : height.get<double>());
    }
    ++done_;
  }

  // The last maps that were written go into it. A damaged frame has none.
  void refillWindow() {
    std::vector<size_t> last;
    for (size_t frame = done_; frame > 0 && last.size() < options_.rule.averageFrames; --frame)
      if (fs::exists(mapPath("elevation", frame - 1))) last.push_back(frame - 1);
    for (auto frame = last.rbegin(); frame != last.rend(); ++frame)
      window_.add(readElevation(mapPath("elevation", *frame)));
  }

  // ---- frame by frame ----

  Worked workOn(size_t frame) const {
    Worked worked;
    try {
      ground::Result r = resultOf(road_, source_.left(frame), source_.right(frame));
      worked.heights = std::move(r.map.heights);
      worked.seenCells = heightsOf(worked.heights).known;
      if (writes(Product::map)) worked.map = encodePng(worked.heights, mapsTexts());
      worked.findings = std::move(r.findings);
    } catch (const Error& error) {
      worked.error = error.what();
    }
    return worked;
  }

  void work() {
    Progress progress("mapping", "frames", source_.size(), Progress::Elsewhere::lines, done_);
    const InterruptWatch watch;
    FrameLog log(logPath());
    Background<Written> writer(options_.threads, [&](Written& written) {
      if (written.report.error.empty()) writeMaps(written);
      log.append(frameLine(written.report, road_.setup));
    });
    const auto workOn = [this](uint64_t frame) { return this->workOn(frame); };
    inOrder(done_, source_.size(), options_.threads, workOn, [&](uint64_t frame, Worked worked) {
      if (watch.requested()) return false;
      if (!worked.error.empty()) progress.say("frame " + source_.name(frame) + " is skipped: " + worked.error);
      for (const Warning& warning : worked.warnings)
        progress.say("frame " + source_.name(frame) + ": " + warning.sentence);
      writer.give(takenIn(frame, std::move(worked)));
      ++done_;
      progress.advance();
      return true;
    });
    writer.finish();
  }

  // What follows from one frame for the next is done here, in order.
  Written takenIn(size_t frame, Worked worked) {
    Written written{frame, reportOn(frame, worked), std::move(worked.map), {}};
    if (!written.report.error.empty() || !writes(Product::average)) return written;
    window_.add(worked.heights);
    written.average = window_.mean();
    return written;
  }

  FrameReport reportOn(size_t frame, Worked& worked) {
    FrameReport report;
    report.number = source_.number(frame);
    report.name = source_.name(frame);
    report.seconds = secondsOf(frame);
    report.error = worked.error;
    report.warnings = worked.warnings;
    skipped_ += !report.error.empty();
    warned_ += !report.warnings.empty();
    if (!report.error.empty()) return report;
    report.seenCells = worked.seenCells;
    report.findings = std::move(worked.findings);
    for (size_t i = 0; i < tracks_.size(); ++i) {
      tracks_[i].step(report.seconds, measuredIn(report.findings->areas[i]));
      report.tracks.push_back(tracks_[i].now());
    }
    return report;
  }

  TextChunks mapsTexts() const { return mapTexts(road_.setup.frame, road_.setup.settings.cells); }

  // The maps are in place before the log tells of the frame.
  void writeMaps(const Written& written) const {
    OutputFiles files;
    if (writes(Product::map)) files.write(mapPath("elevation", written.frame), written.map);
    if (writes(Product::average))
      files.write(mapPath("average", written.frame), encodePng(written.average, mapsTexts()));
    files.commit();
  }

  std::string table() const {
    Table table;
    table.line("frames", static_cast<double>(done_), format("of %zu", source_.size()), 0);
    table.line("skipped", static_cast<double>(skipped_), "", 0);
    if (warned_ > 0) table.line("with warnings", static_cast<double>(warned_), "", 0);
    return table.text();
  }

  const FrameSource& source_;
  const Road& road_;
  const SequenceOptions& options_;
  const FrameTimes times_;
  std::optional<FolderLock> lock_;
  ground::MapWindow window_;
  std::vector<ground::HeightTrack> tracks_;
  size_t done_ = 0, skipped_ = 0, warned_ = 0;
};

}  // namespace

void groundSequence(const FrameSource& source, const Road& road, const SequenceOptions& options) {
  SequenceRun(source, road, options).go();
}

}  // namespace nadir::tool
