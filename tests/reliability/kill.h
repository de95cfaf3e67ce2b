// A writer's lives: each is started, announces what it has done, and is killed at a random moment. The next
// one begins with a look at what the one before has left, and writes down what it has found.
#pragma once

#include "platform/child_process.h"
#include "tests/platform/scratch_folder.h"
#include "tests/scale.h"

#include <functional>
#include <random>
#include <string>
#include <vector>

class Lives
{
public:
    // What a life has announced, in its order, and what the next one has found.
    using Judge =
        std::function<void(std::vector<std::string> const& announced, std::vector<std::string> const& found)>;

    // `command` is started with a folder of its own and a number as arguments; it announces `steps` steps in
    // a round.
    Lives(std::string command, unsigned int steps) : m_command(std::move(command)), m_steps(steps) {}

    // So many lives, and one more, with the number 0, that sees the last one's end. `afterKill` looks at what
    // there is before the next life begins.
    void Run(int count, std::function<void()> const& afterKill, Judge const& judge)
    {
        std::mt19937 engine(std::random_device{}());
        std::vector<std::string> announced;
        for (int life = 1; life <= count; ++life) {
            Forget();
            ChildProcess writer({m_command, m_folder.Path(), std::to_string(life)});
            // Behind any of its steps, and at any moment of the next ones.
            if (!WaitForSteps(1 + engine() % m_steps)) {
                FAIL() << "life " << life << " announces nothing";
            }
            ::Sleep(1 + static_cast<DWORD>(engine() % 30));
            writer.Kill();
            if (life > 1) {
                judge(announced, Lines("found"));
            }
            announced = Lines("announced");
            afterKill();
        }
        Forget();
        EXPECT_EQ(ChildProcess({m_command, m_folder.Path(), "0"}).Wait(), 0);
        judge(announced, Lines("found"));
    }

    std::string const& Folder() const { return m_folder.Path(); }

private:
    void Forget() const
    {
        for (char const* const name : {"announced", "found"}) {
            std::filesystem::remove(m_folder / name);
        }
    }

    bool WaitForSteps(std::size_t count) const
    {
        for (int i = 0; i < 60'000; ++i) {
            if (Lines("announced").size() >= count) {
                return true;
            }
            ::Sleep(1);
        }
        return false;
    }

    // The whole lines: what a kill has cut off was not announced.
    std::vector<std::string> Lines(std::string const& name) const
    {
        std::vector<std::string> lines;
        std::string const content = ContentOf(m_folder / name);
        for (std::size_t begin = 0, end = 0; (end = content.find('\n', begin)) != std::string::npos;
             begin = end + 1) {
            lines.push_back(content.substr(begin, end - begin));
        }
        return lines;
    }

    ScratchFolder const m_folder;
    std::string const m_command;
    unsigned int const m_steps;
};

// A life's own part: every line is with the system before the next thing happens.
class Announcer
{
public:
    explicit Announcer(std::string const& folder)
        : m_file(folder + "/announced", std::ios_base::binary | std::ios_base::app)
    {}

    void Tell(std::string const& line) { m_file << line + "\n" << std::flush; }

private:
    std::ofstream m_file;
};
