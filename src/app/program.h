#pragma once

/// Runs the whole program: command line, info screen, main window.
/// @return the exit code; 0 when the window was closed
int runProgram(int argc, char **argv);
