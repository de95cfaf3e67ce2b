#include "readings.h"

#include <chrono>
#include <filesystem>
#include <system_error>
#include <thread>

namespace station {

void TakeReadings(Record& record)
{
    using namespace std::chrono;

    std::error_code error;
    std::filesystem::space_info const space = std::filesystem::space(".", error);
    if (error) {
        record.remarks.push_back("disk space could not be read");
    } else {
        record.freeBytes = static_cast<double>(space.available);
        record.totalBytes = static_cast<double>(space.capacity);
        record.freePercent = static_cast<float>(100.0 * record.freeBytes / record.totalBytes);
    }
    // The steady clock counts from the start of the machine on the systems that the library serves.
    record.upSeconds =
        static_cast<std::uint32_t>(duration_cast<seconds>(steady_clock::now().time_since_epoch()).count());
    record.processors = static_cast<std::uint16_t>(std::thread::hardware_concurrency());
    record.time = Quarn::UTCTime();
}

} // namespace station
