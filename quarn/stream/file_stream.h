// Quarn::ifstream and Quarn::ofstream: the binary streams over files. Paths are narrow text. Modes are the
// standard's open modes (std::ios_base::binary, app, trunc ...), exactly as given: line ends stay as they are
// only with `binary`. Other programs may read and write the file meanwhile. The streams buffer; a full device
// shows at the write that empties the buffer, at flush or at close. The destructors close and cannot report.
// One object belongs to one thread at a time.
//
//     Quarn::ofstream file("journal.dat", std::ios_base::binary | std::ios_base::app);
//     file << Quarn::Stream::HeaderBlock{0x4A524E4C, 1} << 5;
//     file.close();
//     if (!file.IsValidOutput()) { ... }
#pragma once

#include "quarn/export.h"
#include "quarn/stream/istream.h"
#include "quarn/stream/ostream.h"
#include "quarn/text/string.h"

#include <concepts>
#include <fstream>
#include <ios>

namespace Quarn {

class QUARN_API ifstream : public istream
{
public:
    // No file; the stream is of use only after open().
    ifstream();
    // As open().
    ifstream(char const* path, int mode);
    ifstream(ifstream const& other) = delete;
    ifstream& operator=(ifstream const& other) = delete;
    ~ifstream() override;

    // Opens the file for `mode` and reading. A failure (no such file, no right, a folder, a stream that is
    // open already, a null path) makes the stream invalid; success clears its state.
    void open(char const* path, int mode);
    // Makes the stream invalid where there is no file to close.
    void close() override;

    // The counts of the standard stream, narrowed as Int64ToUInt32 does. readsome brings what is at hand
    // without waiting, which may be less than the file has.
    unsigned int gcount() const override { return m_window.lastRead; }
    unsigned int readsome(unsigned char* buffer, unsigned long n) override;
    // At the end of the file, 4294967295.
    unsigned int peek() override;
    // These behave as those of the standard stream, whose failures show in IsValidInput(). Of the offset the
    // low 32 bits count; another direction than 0, 1 or 2 makes the stream invalid.
    istream& putback(unsigned char c) override;
    istream& unget() override;
    int sync() override;
    istream& seekg(unsigned long offset, unsigned int direction) override;
    istream& seekg(std::streampos position) override;
    // -1 while the stream is invalid.
    std::streampos tellg() override;
    bool IsValidInput() const override;
    // Makes the stream valid again; reading goes on at the current position.
    void clearstate() override;

protected:
    // Throws StreamException(GenericRead) where the file does not bring all `n` bytes (what it brought is in
    // `buffer`), and from then on until clearstate().
    istream& input(unsigned char* buffer, unsigned long n) override;

private:
    void OpenWindow();
    void CloseWindow();

    std::ifstream m_stream;
    // Over the bytes that the standard stream has at hand; its lastRead is the count of all reads.
    detail::Window m_window;
    string m_path;
};

class QUARN_API ofstream : public ostream
{
public:
    // No file; the stream is of use only after open(). `dumpMode` as in ostream; nothing but a bool passes
    // for it, here and below.
    ofstream() : ofstream(false) {}
    template<std::same_as<bool> Bool>
    explicit ofstream(Bool dumpMode) : ostream(dumpMode)
    {
        MarkUnopened();
    }
    // As open().
    ofstream(char const* path, int mode) : ofstream(path, mode, false) {}
    template<std::same_as<bool> Bool>
    ofstream(char const* path, int mode, Bool dumpMode) : ostream(dumpMode)
    {
        open(path, mode);
    }
    ofstream(ofstream const& other) = delete;
    ofstream& operator=(ofstream const& other) = delete;
    ~ofstream() override;

    // Opens the file for `mode` and writing; failures as those of ifstream::open.
    void open(char const* path, int mode);
    // Writes what is buffered and closes the file; where either fails or there is no file, the stream is
    // invalid.
    void close() override;

    // These behave as those of the standard stream, whose failures show in IsValidOutput(). Of the offset the
    // low 32 bits count; another direction than 0, 1 or 2 makes the stream invalid.
    ostream& flush() override;
    ostream& seekp(unsigned long offset, unsigned int direction) override;
    ostream& seekp(std::streampos position) override;
    // -1 while the stream is invalid.
    std::streampos tellp() override;
    // The path as given.
    char const* get_path() override;
    bool IsValidOutput() const override;
    void clearstate() override;

protected:
    // Throws StreamException(GenericWrite) where the bytes cannot be written, and from then on until
    // clearstate().
    ostream& output(unsigned char const* data, unsigned long n) override;

private:
    void MarkUnopened();
    void OpenWindow();
    void CloseWindow();

    std::ofstream m_stream;
    // Over the room in the standard stream's buffer.
    detail::Window m_window;
    string m_path;
};

} // namespace Quarn
