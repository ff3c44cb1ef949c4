#pragma once
// Every exit status of the velmora command, shared by its commands.

// The command did what was asked.
constexpr int exit_success = 0;
// The import produced nothing (read_input gave 0).
constexpr int exit_nothing_imported = 1;
// Wrong usage: unknown command or option, missing or extra arguments.
constexpr int exit_usage = 2;
// A file could not be read or written.
constexpr int exit_unreadable = 3;
