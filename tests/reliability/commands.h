// What the processes do that the reliability tests start, and kill. Each returns its exit code.
#pragma once

#include <string>

// Looks at the settings and their backups, writes what it has found to the file "found" in the folder; then
// saves, backs up and restores without end, with numbers from `number` on, each announced in the file
// "announced" once it has come back. With the number 0 it saves once and ends.
int KeepSettings(std::string const& folder, long number);

// Looks at the journal in the folder, in the same way, sets aside what a killed writer has left at its end,
// and appends records without end; with `isLast` it ends before the first.
int KeepJournal(std::string const& folder, bool isLast);

// Writes so many values to the user's key at `path`, named after the writer and numbered, and between them
// one that all writers share.
int WriteValues(std::string const& path, std::string const& writer, int count);
// Reads the shared value again and again until the file `end` exists; 2 as soon as it is nobody's.
int ReadValues(std::string const& path, std::string const& end);
