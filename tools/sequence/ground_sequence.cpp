// A run over the frames, which can go on where it was interrupted at any moment.
#include "tools/sequence/ground_sequence.hpp"

#include <nadir/nadir.h>

#include <cmath>
#include <deque>
#include <filesystem>
#include <memory>
#include <utility>

#include "tools/base/background.hpp"
#include "tools/base/error.hpp"
#include "tools/base/in_order.hpp"
#include "tools/base/interrupt.hpp"
#include "tools/base/json_value.hpp"
#include "tools/base/progress.hpp"
#include "tools/base/text.hpp"
#include "tools/files/folder_lock.hpp"
#include "tools/files/frame_log.hpp"
#include "tools/pictures/pictures.hpp"
#include "tools/pictures/png.hpp"
#include "tools/report/map_texts.hpp"
#include "tools/road/lanes.hpp"
#include "tools/sequence/frame_line.hpp"
#include "tools/sequence/frame_writer.hpp"
#include "tools/sequence/settings_difference.hpp"

namespace nadir::tool {

namespace fs = std::filesystem;

namespace {

// The threads hand this over: all that is kept of a frame.
struct Worked {
  std::string error;
  Warnings warnings;
  Bytes map;                   // its file
  std::unique_ptr<Lane> lane;  // with the frame's result, unless there is an error
};

// What is written of a frame, which must not hold up the next one.
struct Written {
  size_t frame;
  FrameReport report;
  Bytes map;
  Grid<uint16_t> average;
  std::unique_ptr<Lane> lane;  // that the report's findings lie in
};

// What a log tells of an area's height.
double measuredIn(const Json& area, const char* key) {
  const Json& height = area.at(key);
  return height.is_null() ? std::nan("") : height.get<double>();
}

TrackerHandle trackerOf(const Road& road, NadirTrackSettings settings, bool averages) {
  if (!averages) settings.average_frames = 0;
  NadirTracker* tracker = nullptr;
  expect(nadir_tracker_create(road.handle.get(), &settings, &tracker, nullptr));
  return TrackerHandle(tracker);
}

FrameRange rangeWithin(const FrameSource& source, const FrameRange& range) {
  if (range.end <= source.size()) return range;
  throw Error(format("there are %zu frames, and none up to %zu", source.size(), range.end));
}

class SequenceRun {
 public:
  SequenceRun(const FrameSource& source, const Road& road, const SequenceOptions& options)
      : source_(source),
        road_(road),
        options_(options),
        range_(rangeWithin(source, options.rule.range.value_or(FrameRange{0, source.size()}))),
        times_(options.rule.times, timesBegunWith(), source),
        inputs_(marksOfInputs()),
        lanes_(road),
        tracker_(trackerOf(road, options.rule.track, writes(Product::average))) {}

  void go() {
    begin();
    FrameLog log(logPath());
    takeUp(log);
    if (!times_.sentence().empty()) say(times_.sentence());
    if (road_.options.match.range == automaticRange) say(rangeSentence(road_));
    tell(times_.warnings());
    if (joins())
      join(log);
    else
      work(log);
    print(options_.json ? json() : table());
    if (done_ < range_.end)
      throw Error(format("interrupted after %zu of %zu frames; the same command with --resume goes on there",
                         framesDone(), framesWanted()),
                  interrupted);
    if (skipped_ > 0)
      throw Error(format("%zu of %zu frames were skipped; %s says why", skipped_, framesDone(), logPath().c_str()),
                  notAllReliable);
    if (options_.strict && warned_ > 0)
      throw Error(format("%zu of %zu frames have warnings; %s tells them", warned_, framesDone(), logPath().c_str()),
                  notAllReliable);
    if (options_.strict) throwIfAny(times_.warnings());
  }

 private:
  bool joins() const { return !options_.join.empty(); }
  bool writes(Product product) const { return !joins() && options_.rule.products.count(product) > 0; }
  size_t framesDone() const { return done_ - range_.begin; }
  size_t framesWanted() const { return range_.end - range_.begin; }
  std::string settingsPath() const { return options_.folder + "/run.json"; }
  std::string logPath() const { return options_.folder + "/frames.jsonl"; }
  std::string mapPath(const char* kind, size_t frame) const {
    return options_.folder + "/" + kind + "/" + source_.name(frame) + ".png";
  }
  double secondsOf(size_t frame) const { return times_.seconds(source_.number(frame)); }
  int64_t nanosecondsOf(size_t frame) const { return times_.nanoseconds(source_.number(frame)); }

  // ---- the beginning, or where an earlier run has ended ----

  // A guess could be another one when frames have come since.
  std::optional<TimeUnit> timesBegunWith() const {
    if (!options_.resume || !fs::exists(settingsPath())) return {};
    return timesIn(readSettings());
  }

  std::string readSettings() const {
    const std::string path = options_.folder + "/run.json", text = readText(path);
    try {
      checkNesting(text);
    } catch (const UnusableFile& reason) {
      throw UnusableFile("cannot use " + path + ": " + reason.what());
    }
    return text;
  }

  // Whatever the user names is read; a map must not take its place.
  std::shared_ptr<const FileMarks> marksOfInputs() const {
    std::vector<std::string> inputs = {road_.options.camera, road_.options.areas, road_.options.mask};
    for (size_t frame = range_.begin; frame < range_.end && !joins(); ++frame)
      inputs.insert(inputs.end(), {source_.left(frame), source_.right(frame)});
    return std::make_shared<const FileMarks>(inputs);
  }

  void checkOutputs() const {
    for (const char* kind : {"elevation", "average"})
      for (size_t frame = range_.begin; frame < range_.end && fs::exists(options_.folder + "/" + kind); ++frame)
        if (inputs_->hold(mapPath(kind, frame)))
          throw Error("the output " + mapPath(kind, frame) + " is one of the inputs");
  }

  // The folders are there before run.json tells of them, so that a run that was killed in between can go on too.
  void begin() {
    checkMask();
    checkCamera();
    const std::string settings = settingsText(road_, options_.rule, source_, times_.unit());
    checkOutputs();
    if (joins()) takeParts(runParts(options_.join, settings));
    OutputFiles files(inputs_);
    files.makeFolder(options_.folder);
    lock_.emplace(options_.folder);
    const bool begun = fs::exists(settingsPath()) || fs::exists(logPath());
    if (begun) checkResumable(settings);
    if (options_.resume)
      for (const char* folder : {"", "/elevation", "/average"}) removeParts(options_.folder + folder);
    if (writes(Product::map)) files.makeFolder(options_.folder + "/elevation");
    if (writes(Product::average)) files.makeFolder(options_.folder + "/average");
    if (!begun) files.write(settingsPath(), bytesOf(settings));
    files.commit();
  }

  void checkResumable(const std::string& settings) const {
    if (!options_.resume)
      throw Error(options_.folder + " holds a run already: --resume goes on with it, or name another folder");
    const std::string begun = readSettings(), other = otherVersion(begun, settings);
    if (!other.empty())
      throw Error(
          format("cannot resume: %s was begun by %s, this is %s: go on with that version, or name another "
                 "folder for a run from the beginning",
                 options_.folder.c_str(), other.c_str(), nadir_version()));
    const std::string difference = settingsDifference(begun, settings);
    if (!difference.empty())
      throw Error("cannot resume: " + settingsPath() + " tells of other settings: " + difference);
  }

  // A new run has nothing to take up.
  void takeUp(const FrameLog& log) {
    const uintmax_t whole = forEachLine(logPath(), [this](const Json& line) { readBack(line); });
    for (const Measured& measured : measured_) checkMaps(measured.frame);
    log.cutOff(whole);
    const size_t begin = windowBegin();
    warmUp();
    for (const Measured& measured : measured_)
      replay(measured,
             measured.frame >= begin ? readElevation(mapPath("elevation", measured.frame)) : Grid<uint16_t>());
    measured_.clear();
  }

  // The results would be other ones than those of a run that was not interrupted.
  void checkMaps(size_t frame) const {
    if (writes(Product::map)) checkMap(mapPath("elevation", frame));
    if (writes(Product::average)) checkMap(mapPath("average", frame));
  }

  void checkMap(const std::string& path) const {
    std::error_code missing;
    if (fs::is_regular_file(path, missing) && fs::file_size(path, missing) > 0) return;
    throw Error("cannot resume: " + logPath() + " tells of " + path +
                ", which is missing or empty: put it back, or name another folder for a run from the beginning");
  }

  // These are checked here and not frame by frame: with the wrong file every frame would be damaged.
  void checkMask() const {
    if (road_.options.mask.empty()) return;
    const Grid<uint8_t> mask = readMask(road_.options.mask);
    if (mask.width != road_.taken.width || mask.height != road_.taken.height)
      throw Error(format("the mask %s is %s pixels, but the camera of %s takes pictures of %s",
                         road_.options.mask.c_str(), sizeText(mask.width, mask.height).c_str(),
                         road_.options.camera.c_str(), sizeText(road_.taken.width, road_.taken.height).c_str()));
  }

  // The first frame that can be read tells.
  void checkCamera() const {
    std::optional<Pair> pair;
    for (size_t frame = range_.begin; frame < source_.size() && !pair; ++frame) pair = readable(frame);
    StageTimes untold;
    if (pair) fittingPair(road_, std::move(*pair), untold);
  }

  std::optional<Pair> readable(size_t frame) const {
    try {
      return readFrame(source_.left(frame), source_.right(frame));
    } catch (const UnusableFile&) {
      return {};
    }
  }

  // The tracker's state follows from what was measured.
  struct Measured {
    size_t frame;
    std::vector<double> highestMm, pieceMm;
  };

  void readBack(const Json& line) {
    const auto number = wholeNumberIn<uint64_t>(line.at("frame"), 0, UINT64_MAX);
    if (done_ >= range_.end || number != source_.number(done_))
      throw Error("cannot resume: " + logPath() + " tells of other frames");
    const bool damaged = line.contains("error");
    skipped_ += damaged;
    warned_ += !line.at("warnings").empty();
    if (!damaged) {
      Measured measured{done_, {}, {}};
      for (size_t i = 0; i < road_.areas.size(); ++i) {
        measured.highestMm.push_back(measuredIn(line.at("areas").at(i), "highest_mm"));
        measured.pieceMm.push_back(measuredIn(line.at("areas").at(i), "piece_mm"));
      }
      measured_.push_back(std::move(measured));
    }
    ++done_;
  }

  // The first of the last frames, whose maps fill the window of the average.
  size_t windowBegin() const {
    const size_t maps = writes(Product::average) ? options_.rule.track.average_frames : 0;
    const size_t begin = measured_.size() - std::min(maps, measured_.size());
    return begin < measured_.size() ? measured_[begin].frame : done_;
  }

  // heights  its map, empty where no average needs it.
  void replay(const Measured& measured, const Grid<uint16_t>& heights) {
    NadirMeasurement m{};
    m.size = sizeof m;
    m.time_ns = nanosecondsOf(measured.frame);
    m.area_count = static_cast<uint32_t>(measured.highestMm.size());
    m.highest_mm = measured.highestMm.data();
    m.piece_mm = measured.pieceMm.data();
    if (!heights.pixels.empty())
      m.heights = {heights.pixels.data(), heights.width * sizeof(uint16_t), heights.width, heights.height};
    const NadirStatus status = nadir_tracker_replay(tracker_.get(), &m);
    if (status == NADIR_FOREIGN_RESULT) throw Error("the maps of the frames differ in size");
    if (status != NADIR_OK) throw Error("cannot resume: a height that " + logPath() + " tells is none of this program");
  }

  // ---- frames before the range ----

  // Means of the range's first frames are those of a run over all frames only where the last maps before it have their
  // part in them. How many frames that takes depends on how many of them are damaged.
  void warmUp() {
    const size_t window = writes(Product::average) ? options_.rule.track.average_frames - 1 : 0;
    if (measured_.size() >= window || done_ == range_.end) return;
    std::deque<std::pair<size_t, Grid<uint16_t>>> maps;
    const auto frameBefore = [this](uint64_t steps) { return range_.begin - 1 - static_cast<size_t>(steps); };
    const auto heightsBefore = [&](uint64_t steps) { return heightsOf(frameBefore(steps)); };
    inOrder(0, range_.begin, options_.threads, heightsBefore, [&](uint64_t steps, Grid<uint16_t> heights) {
      if (!heights.pixels.empty()) maps.emplace_front(frameBefore(steps), std::move(heights));
      return maps.size() + measured_.size() < window;
    });
    const std::vector<double> unknown(road_.areas.size(), std::nan(""));
    for (const auto& [frame, heights] : maps) replay({frame, unknown, unknown}, heights);
  }

  // Empty where the frame is damaged.
  Grid<uint16_t> heightsOf(size_t frame) {
    Worked worked = workOn(frame);
    if (!worked.lane) return {};
    Grid<uint16_t> heights = gridOf<uint16_t>(worked.lane->result.findings.heights);
    lanes_.giveBack(std::move(worked.lane));
    return heights;
  }

  // ---- lines of other runs ----

  // They may reach less far than the frames.
  void takeParts(std::vector<RunPart> parts) {
    parts_ = std::move(parts);
    range_ = rangeWithin(source_, {0, parts_.empty() ? 0 : parts_.back().range.end});
  }

  // A part knows nothing of the frames before it, so that heights are followed here.
  void join(FrameLog& log) {
    Progress progress("joining", "frames", framesWanted(), Progress::Elsewhere::lines, framesDone());
    const InterruptWatch watch;
    FrameWriter files(log, inputs_);
    for (const RunPart& part : parts_) {
      if (watch.requested()) break;
      if (done_ < part.range.end) joinPart(part, files, progress);
    }
    files.flush();
  }

  void joinPart(const RunPart& part, FrameWriter& files, Progress& progress) {
    size_t frame = part.range.begin;
    forEachLine(part.folder + "/frames.jsonl", [&](Json line) {
      if (frame++ < done_) return;
      readBack(line);
      if (!measured_.empty()) putTracksIn(line);
      measured_.clear();
      files.append(lineText(line));
      progress.advance();
    });
    if (done_ != part.range.end) throw Error("cannot join " + part.folder + ": it does not have all of its frames");
  }

  void putTracksIn(Json& line) {
    replay(measured_.back(), {});
    for (size_t i = 0; i < road_.areas.size(); ++i) addTrack(line["areas"][i], trackIn(static_cast<uint32_t>(i)));
  }

  // ---- frame by frame ----

  Worked workOn(size_t frame) {
    Worked worked;
    std::unique_ptr<Lane> lane = lanes_.take();
    StageTimes times;
    try {
      tool::work(road_, *lane->road, source_.left(frame), source_.right(frame), times, lane->result);
      if (writes(Product::map)) worked.map = encodePng(gridOf<uint16_t>(lane->result.findings.heights), mapsTexts());
      worked.warnings = warningsOf(lane->result.findings);
      worked.lane = std::move(lane);
    } catch (const UnusableFile& error) {
      worked.error = error.what();
      lanes_.giveBack(std::move(lane));
    }
    return worked;
  }

  // What was done before an error is written all the same.
  void work(FrameLog& log) {
    Progress progress("mapping", "frames", framesWanted(), Progress::Elsewhere::lines, framesDone());
    const InterruptWatch watch;
    FrameWriter files(log, inputs_);
    Background<Written> writer(options_.threads, [&](Written& written) {
      if (written.report.error.empty()) writeMaps(written, files);
      files.append(lineText(frameLine(written.report, road_)));
      if (written.lane) lanes_.giveBack(std::move(written.lane));
    });
    const auto workOn = [this](uint64_t frame) { return this->workOn(frame); };
    const auto finish = [&] {
      writer.finish();
      files.flush();
    };
    try {
      workThrough(workOn, writer, progress, watch);
    } catch (...) {
      finish();
      throw;
    }
    finish();
  }

  template <class Work>
  void workThrough(Work workOn, Background<Written>& writer, Progress& progress, const InterruptWatch& watch) {
    inOrder(done_, range_.end, options_.threads, workOn, [&](uint64_t frame, Worked worked) {
      if (watch.requested()) return false;
      if (!worked.error.empty()) progress.say("frame " + source_.name(frame) + " is skipped: " + worked.error);
      for (const Warning& warning : worked.warnings)
        progress.say("frame " + source_.name(frame) + ": " + warning.sentence);
      writer.give(takenIn(frame, std::move(worked)));
      ++done_;
      progress.advance();
      return true;
    });
  }

  // What follows from one frame for the next is done here, in order.
  Written takenIn(size_t frame, Worked worked) {
    Written written{frame, reportOn(frame, worked), std::move(worked.map), {}, std::move(worked.lane)};
    if (written.lane && writes(Product::average)) written.average = average();
    return written;
  }

  Grid<uint16_t> average() {
    NadirPlane mean;
    expect(nadir_tracker_average(tracker_.get(), &mean));
    return gridOf<uint16_t>(mean);
  }

  FrameReport reportOn(size_t frame, const Worked& worked) {
    FrameReport report;
    report.number = source_.number(frame);
    report.name = source_.name(frame);
    report.seconds = secondsOf(frame);
    report.error = worked.error;
    report.warnings = worked.warnings;
    skipped_ += !report.error.empty();
    warned_ += !report.warnings.empty();
    if (!report.error.empty()) return report;
    report.findings = worked.lane->result.findings;
    expect(nadir_tracker_step(tracker_.get(), worked.lane->result.memory.get(), nanosecondsOf(frame)));
    for (uint32_t i = 0; i < report.findings.area_count; ++i)
      report.tracks.push_back(options_.rule.range ? NadirTrack{} : trackIn(i));  // followed where lines are joined
    return report;
  }

  NadirTrack trackIn(uint32_t area) const {
    NadirTrack track;
    track.size = sizeof track;
    expect(nadir_tracker_read(tracker_.get(), area, &track));
    return track;
  }

  TextChunks mapsTexts() const { return mapTexts(road_.context, road_.settings.percentile); }

  // The maps are in place before the log tells of the frame.
  void writeMaps(const Written& written, FrameWriter& files) const {
    if (writes(Product::map)) files.write(mapPath("elevation", written.frame), written.map);
    if (writes(Product::average))
      files.write(mapPath("average", written.frame), encodePng(written.average, mapsTexts()));
  }

  std::string table() const {
    Table table;
    table.line("frames", static_cast<double>(framesDone()), format("of %zu", source_.size()), 0);
    table.line("skipped", static_cast<double>(skipped_), "", 0);
    if (warned_ > 0) table.line("with warnings", static_cast<double>(warned_), "", 0);
    return table.text() + writtenLine(logPath() + (writes(Product::map) ? " and a map of every frame" : ""));
  }

  std::string json() const {
    const Json counts = {
        {"frames", framesDone()}, {"frames_in_all", source_.size()}, {"skipped", skipped_}, {"with_warnings", warned_}};
    return counts.dump(2) + "\n";
  }

  const FrameSource& source_;
  const Road& road_;
  const SequenceOptions& options_;
  FrameRange range_;
  const FrameTimes times_;
  const std::shared_ptr<const FileMarks> inputs_;
  std::optional<FolderLock> lock_;
  Lanes lanes_;
  TrackerHandle tracker_;
  std::vector<RunPart> parts_;      // whose lines are joined
  std::vector<Measured> measured_;  // by the frames of an earlier run, until they are taken up
  size_t done_ = range_.begin, skipped_ = 0, warned_ = 0;
};

}  // namespace

void groundSequence(const FrameSource& source, const Road& road, const SequenceOptions& options) {
  SequenceRun(source, road, options).go();
}

}  // namespace nadir::tool
