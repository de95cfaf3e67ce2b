// Win32Quarn::Log: the process's text log, one file. A message is written where its level does not exceed the
// output level; options say how the file is opened, what stands around the message and whether the file stays
// open. Bytes go out as they are, a line feed as one byte on every system.
//
//   Log::SetPath("station.log");
//   Log::SetOutputOptions(4 | 16); // append, with the date
//   Log::Output(0, "started");     // 24-03-07 | started
//
// The log has one state for the process and no lock: one thread at a time, or the application serialises its
// calls.
#pragma once

#include "quarn/export.h"

namespace Win32Quarn::Log {

// Option bits:
//
//    1  close the file after each message; it is then opened truncating
//    2  write the time, "%02d:%02d:%02d ": hour, minute, second of local time. See Output
//    4  write the date, "%02d-%02d-%02d ": year minus 2000, month, day of local time
//    8  open the file truncating even without bit 1
//   16  write a line feed after the message
//
// At the start they are 1 and 16: each message replaces the one before, deliberately, and the file holds the
// latest alone. Without the bits 1 and 8 the file is opened for appending. Without bit 1 it stays open until
// Close, a failure or a message with that bit. Messages then pass through a buffer: the latest of them may
// not be in the file before it is closed or the process ends, are lost with a process that is killed, and a
// full disk may show only later.
//
// Result codes:
//
//    0  success
//   -1  SetPath: the file is open, or the path is null or has 260 characters or more;
//       Close: the file did not close well, its last messages may be missing
//   -2  Output: the file could not be opened; Close: it was not open
//   -3  a write failed
//   -4  the file did not close well behind a message
//   -5  output is refused because an earlier call failed, see ClearError
//   -6  no default path could be found
//
// No function throws.

// Names the log file, clears the error and returns 0; on -1 nothing changes. The path is copied. It is taken
// as it is, so it counts from the directory that is current when the file is opened. An empty path stands for
// the default path, which the next output makes.
QUARN_API int SetPath(char const* path);

// The path, empty until one is set or the first output has made the default. The text is the log's own and
// changes with the path.
QUARN_API char const* GetPath();

// The output level: messages with a greater one are dropped. 0 at the start.
QUARN_API void SetOutputLevel(int level);
// As SetOutputLevel set it.
QUARN_API int GetOutputLevel();

// The options of the two-argument Output, as they are given; bits that are not listed mean nothing.
QUARN_API void SetOutputOptions(unsigned int options);
// As SetOutputOptions set them.
QUARN_API unsigned int GetOutputOptions();

// Writes one message with the options that are set, or with `options` alone. 0 without any effect where the
// level exceeds the output level; else in this order:
//
// - Where an earlier call failed: -5.
// - Without a path: the default path, the executable's name up to its first dot with ".log" behind it, in the
//   first of these folders that the system has: common documents, common application data, application data,
//   local application data, personal. -6 where none is found or the path does not fit in 260 characters; the
//   error is not set, so that the next output tries again.
// - Where the file is not open, it is opened; programs that this one starts do not inherit it. On Windows
//   another program may keep the file for itself, which gives -2; elsewhere nothing is kept so, but a pipe
//   that nobody reads gives -2.
// - The date, the time, and behind either "| ".
// - The text, by the printf formatting rules but without arguments: "%%" gives a percent sign, a conversion
//   what a zero or an empty text would give ("%5d" four blanks and a 0, "%s" nothing, "%c" a zero byte, "%p"
//   sixteen zeros), "%n" nothing; a '*' is a 0, widths and precisions end at 4095. What is no conversion of
//   the standard ("%y", "%m", "%1$s", a percent sign at the end) stands as it is. No text is dangerous; but
//   for the locale's decimal point it gives the same on every system. A null text is a failed write (EINVAL).
//
// Deliberately, the time's bit makes the message fail, for its write is taken for one that failed: the file
// gets the stamp and "| ", but no message and no line feed, and the result is -3.
//
// After a failed write the file is closed. Every negative result but -5 and -6 sets the error.
QUARN_API int Output(int level, char const* text);
QUARN_API int Output(int level, int options, char const* text);

// Closes the file; on -1, which sets the error, too. -2 where it is not open.
QUARN_API int Close();

// Lets output go on after a failure.
QUARN_API void ClearError();

// Of the last failure: the runtime library's error number (ENOENT, ...), or, on -6, the system's code where
// the executable's path could not be told (ERROR_INSUFFICIENT_BUFFER, ...) or the default path is too long
// (ERROR_FILENAME_EXCED_RANGE). With the failure that the time's bit makes, whatever the number is at that
// moment. 0 at the start; never cleared.
QUARN_API unsigned long GetErrorInformation();

} // namespace Win32Quarn::Log
