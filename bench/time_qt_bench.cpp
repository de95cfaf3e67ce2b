// The times by QDate and QDateTime, in UTC.
#include "bench/time_bench.h"

#include <QDateTime>
#include <QString>
#include <vector>

namespace {

using Bench::Fields;

Fields Of(QDate const& date, QTime const& time)
{
    int year = 0;
    int month = 0;
    int day = 0;
    date.getDate(&year, &month, &day);
    return {year, month, day, time.hour(), time.minute(), time.second()};
}

std::vector<QDateTime> const& Times()
{
    static std::vector<QDateTime> const times = [] {
        std::vector<QDateTime> made;
        for (Fields const& fields : Bench::TheTimes().fields) {
            made.emplace_back(QDate(fields.year, fields.month, fields.day),
                              QTime(fields.hour, fields.minute, fields.second), Qt::UTC);
        }
        return made;
    }();
    return times;
}

// From the fields, as the other peers: a QDate is a day's number already.
void ToJulian(benchmark::State& state)
{
    Bench::Times const& times = Bench::TheTimes();
    Bench::MeasureTimes(
        state,
        [&](std::size_t i) {
            Fields const& fields = times.fields[i];
            qint64 const day = QDate(fields.year, fields.month, fields.day).toJulianDay();
            return Bench::ToJulian(day - Bench::Epoch, fields.SecondOfDay());
        },
        Bench::JulianDay);
}

void FromJulian(benchmark::State& state)
{
    Bench::Times const& times = Bench::TheTimes();
    Bench::MeasureTimes(
        state,
        [&](std::size_t i) {
            Bench::DayAndSecond const split = Bench::Split(times.julian[i]);
            return Of(QDate::fromJulianDay(split.day + Bench::Epoch),
                      QTime::fromMSecsSinceStartOfDay(split.second * 1000));
        },
        Bench::Original);
}

void Add(benchmark::State& state)
{
    std::vector<QDateTime> const& times = Times();
    Bench::MeasureTimes(
        state,
        [&](std::size_t i) {
            QDateTime const later = times[i].addSecs(Bench::Added);
            return Of(later.date(), later.time());
        },
        Bench::Later);
}

void Format(benchmark::State& state)
{
    std::vector<QDateTime> const& times = Times();
    QString const format = QStringLiteral("yyyy-MM-dd HH:mm:ss");
    Bench::MeasureTimes(
        state, [&](std::size_t i) { return times[i].toString(format); },
        [](std::size_t i) { return QString::fromStdString(Bench::Text(i)); });
}

BENCHMARK(ToJulian)->Name("date to Julian day/QDate");
BENCHMARK(FromJulian)->Name("Julian day to date/QDate");
BENCHMARK(Add)->Name("time plus duration/QDateTime");
BENCHMARK(Format)->Name("time as text/QDateTime");

} // namespace
