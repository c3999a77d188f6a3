#pragma once

/// What the process tells its caller at its end.
namespace quillon::ExitStatus {

inline constexpr int success = 0;
/// What was asked for could not be done.
inline constexpr int failure = 1;
/// The command line is wrong.
inline constexpr int usage = 2;
/// There is no display, or it lacks something that the program needs.
inline constexpr int noDisplay = 3;
/// The command is for the running program, and none runs.
inline constexpr int notRunning = 4;

} // namespace quillon::ExitStatus
