#pragma once

// The scripted run that films the app: the dropdown of a demo store in a window of its own,
// moved through a show by the film's script while the camera rolls. Main thread only.

#include <string>

namespace scrimlet::mac::DemoFilmRun {

/// Films the app into `dir`, then ends the process: with status 0 and the folder on
/// standard output when the film and its files were written, with status 1 and the reason
/// on standard error otherwise.
void run(const std::string& dir);

} // namespace scrimlet::mac::DemoFilmRun
