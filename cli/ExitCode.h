#pragma once
// The exit statuses of the velmora command, shared by its commands.

// The command did what was asked.
constexpr int exit_success = 0;
// Wrong usage: unknown command or option, missing or extra arguments.
constexpr int exit_usage = 2;
// A file could not be read or written.
constexpr int exit_unreadable = 3;
