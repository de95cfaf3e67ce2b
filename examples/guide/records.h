// The records of docs/guide.md.
#pragma once

#include "quarn/quarn_util.h"

#include <cstdint>

namespace guide {

// [the record]
struct Sample
{
    std::uint32_t pump = 0;
    double level = 0;     // meters
    Quarn::string remark; // since version 2
};

constexpr std::uint32_t sampleId = 0x534D504C; // tells this kind of record from all others
constexpr std::uint32_t sampleVersion = 2;     // counts up whenever the fields change
// [end]

void Save(Quarn::ostream& stream, Sample const& sample);
bool SaveFile(char const* path, Sample const& sample);
Sample Load(Quarn::istream& stream);
Quarn::string LoadFile(char const* path, Sample& sample);
bool ListFile(char const* path, Sample const& sample);

} // namespace guide
