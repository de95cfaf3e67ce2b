// The record by Boost.Serialization's binary archive, without its header, over standard streams.
#include "bench/record_bench.h"

#include <boost/archive/binary_iarchive.hpp>
#include <boost/archive/binary_oarchive.hpp>

namespace {

struct Boost
{
    static void Write(std::ostream& stream, std::vector<Bench::Record> const& records)
    {
        boost::archive::binary_oarchive archive(stream, boost::archive::no_header);
        for (Bench::Record const& record : records) {
            Bench::ForEachField(record, [&](auto const& field) { Put(archive, field); });
        }
    }
    static void Read(std::istream& stream, std::vector<Bench::Record>& records)
    {
        boost::archive::binary_iarchive archive(stream, boost::archive::no_header);
        for (Bench::Record& record : records) {
            Bench::ForEachField(record, [&](auto& field) { Get(archive, field); });
        }
    }

private:
    template<typename T>
    static void Put(boost::archive::binary_oarchive& archive, T const& field)
    {
        archive << field;
    }
    static void Put(boost::archive::binary_oarchive& archive, Quarn::string const& field)
    {
        archive << static_cast<std::string const&>(field);
    }
    template<typename T>
    static void Get(boost::archive::binary_iarchive& archive, T& field)
    {
        archive >> field;
    }
    static void Get(boost::archive::binary_iarchive& archive, Quarn::string& field)
    {
        archive >> static_cast<std::string&>(field);
    }
};

[[maybe_unused]] int const g_registered = (Bench::Register<Boost>("Boost.Serialization"), 0);

} // namespace
