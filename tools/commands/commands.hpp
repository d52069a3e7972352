// The commands: each lives in a file of its name and adds itself to the command line: its options, its help, and a
// callback that does the work and throws Error where it cannot.
#pragma once

namespace CLI {
class App;
}

namespace nadir::tool {

void addCameraCommand(CLI::App& app);
void addCheckCommand(CLI::App& app);
void addDisparityCommand(CLI::App& app);
void addEvaluateCommand(CLI::App& app);
void addGroundCommand(CLI::App& app);
void addLevelCommand(CLI::App& app);
void addPlanCommand(CLI::App& app);
void addPreviewCommand(CLI::App& app);
void addRectifyCommand(CLI::App& app);
void addSynthCommand(CLI::App& app);
void addTuneCommand(CLI::App& app);
void addVerifyCommand(CLI::App& app);

}  // namespace nadir::tool
