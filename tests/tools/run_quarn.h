// The program quarn as a user runs it: a process of its own, its output and its exit code; and a folder for
// the files that it works on.
#pragma once

#include "tests/platform/scratch_folder.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

struct Outcome
{
    int code = -1; // -1 where it did not run, or was killed
    std::string output;
    std::string errors;
};

// With line feeds alone in what it printed.
Outcome RunQuarn(std::vector<std::string> const& arguments);
// The exit code of any program, whose output goes to files.
int RunProgram(std::string const& program, std::vector<std::string> const& arguments,
               std::string const& output, std::string const& errors);

class QuarnTool : public testing::Test
{
protected:
    // Runs the program and expects this exit code.
    Outcome Run(std::vector<std::string> const& arguments, int code = 0)
    {
        Outcome outcome = RunQuarn(arguments);
        EXPECT_EQ(outcome.code, code) << outcome.output << outcome.errors;
        return outcome;
    }
    // A settings file with this in its root key, between lines 4 and the last two.
    std::string MakeSettings(std::string const& name, std::string const& content)
    {
        return m_folder.Make(name, "\n<Quarn_Properties>\n\n  <Key Name=\"Station\">\n" + content +
                                       "\n  </Key>\n\n</Quarn_Properties>");
    }

    ScratchFolder m_folder;
};

inline bool Has(std::string const& text, std::string const& part)
{
    return text.find(part) != std::string::npos;
}
