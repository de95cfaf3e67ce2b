// The record by cereal's binary archive over standard streams.
#include "bench/record_bench.h"

#include <cereal/archives/binary.hpp>
#include <cereal/types/string.hpp>

namespace {

struct Cereal
{
    static void Write(std::ostream& stream, std::vector<Bench::Record> const& records)
    {
        cereal::BinaryOutputArchive archive(stream);
        for (Bench::Record const& record : records) {
            Bench::ForEachField(record, [&](auto const& field) { Put(archive, field); });
        }
    }
    static void Read(std::istream& stream, std::vector<Bench::Record>& records)
    {
        cereal::BinaryInputArchive archive(stream);
        for (Bench::Record& record : records) {
            Bench::ForEachField(record, [&](auto& field) { Get(archive, field); });
        }
    }

private:
    template<typename T>
    static void Put(cereal::BinaryOutputArchive& archive, T const& field)
    {
        archive(field);
    }
    static void Put(cereal::BinaryOutputArchive& archive, Quarn::string const& field)
    {
        archive(static_cast<std::string const&>(field));
    }
    template<typename T>
    static void Get(cereal::BinaryInputArchive& archive, T& field)
    {
        archive(field);
    }
    static void Get(cereal::BinaryInputArchive& archive, Quarn::string& field)
    {
        archive(static_cast<std::string&>(field));
    }
};

[[maybe_unused]] int const g_registered = (Bench::Register<Cereal>("cereal"), 0);

} // namespace
