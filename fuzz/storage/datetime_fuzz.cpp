// The date-time text reader under a fuzzer: whatever it accepts is a real date-time that the
// general, short date and long time forms write back to text that reads as the same instant.
#include "storage/datetime.h"

#include <QString>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace trendax;

namespace {

void check(bool ok) {
    if (!ok)
        std::abort();
}

bool sameSecond(double a, double b) {
    return std::abs(a - b) * datetime::secondsPerDay < 0.001;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto value = datetime::parse(text);
    // The text form and the byte form of the same Latin-1 text read alike.
    const auto fromText = datetime::parse(QString::fromLatin1(text.data(), qsizetype(size)));
    check(value.has_value() == fromText.has_value());
    if (!value)
        return 0;
    check(std::isfinite(*value) && *value == *fromText);

    const datetime::Civil civil = datetime::toCivil(*value);
    // Only whole seconds are written by the controllers, so nothing finer may appear.
    check(civil.millisecond == 0);
    // A year of fewer than four digits does not read back from the four-digit forms.
    if (civil.year < 1000 || civil.year > 9999)
        return 0;

    const auto general = datetime::parse(datetime::formatGeneral(*value));
    check(general && sameSecond(*general, *value));
    const auto date = datetime::parse(datetime::formatShortDate(*value));
    check(date && *date == datetime::dateValue(*value));
    const auto time = datetime::parse(datetime::formatLongTime(*value));
    check(time && sameSecond(*time, *value - datetime::dateValue(*value)));
    check(*datetime::fromDateTime(civil.year, civil.month, civil.day, civil.hour, civil.minute,
                                  civil.second) == *value);
    return 0;
}
