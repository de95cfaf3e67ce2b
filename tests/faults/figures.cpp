#include "tests/faults/fault_loop.h"
#include "tests/scale.h"

namespace Faults {

namespace {

class Sum : public ::testing::Environment
{
public:
    void TearDown() override
    {
        if (m_faults > 0) {
            ShowFigure(m_faults, " failures");
        }
    }
    void Add(Figures const& figures) { m_faults += figures.faults; }

private:
    int m_faults = 0;
};

Sum& TheSum()
{
    static auto& sum = static_cast<Sum&>(*::testing::AddGlobalTestEnvironment(new Sum)); // owned by the tests
    return sum;
}

} // namespace

void RecordFigures(Figures const& figures)
{
    ::testing::Test::RecordProperty("faults", figures.faults);
    ::testing::Test::RecordProperty("refusals", figures.refusals);
    TheSum().Add(figures);
}

} // namespace Faults
