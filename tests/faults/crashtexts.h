#pragma once

#include "storage/datetime.h"

#include <QString>
#include <random>

// What the crash writer writes, shared with the test that checks the files it leaves: every
// text names its number, so a file's content says which write it came from.
namespace trendax::test {

// The time of comment n: one second apart from 1 March 2012.
inline datetime::DateTime crashCommentTime(long n) {
    return 40969.0 + double(n) / datetime::secondsPerDay;
}

// Comment n: its number, then a filler of a random length from a few bytes to several pages,
// so that some lines cross page boundaries of the file and take the kernel more than one step.
inline QString crashComment(long n) {
    std::mt19937 random{unsigned(n)};
    std::uniform_int_distribution<int> small(1, 300), large(4096, 40000);
    const int length = random() % 4 == 0 ? large(random) : small(random);
    return QStringLiteral("comment %1 ").arg(n) + QString(length, QChar(char16_t(u'a' + n % 26))) +
           QStringLiteral(" end %1").arg(n);
}

// Factor n of a file ('s' scale, 'o' offset): a number whose length changes with n, up to
// several pages, so that an old and a new file never have the same size by chance.
inline QString crashFactor(long n, char which) {
    const int digits = 1 + int((n * 2654435761u) % 9000u);
    return QStringLiteral("%1%2.%3")
        .arg(which == 's' ? 1 : -1)
        .arg(n)
        .arg(QString(digits, QChar(char16_t(u'0' + n % 10))));
}

} // namespace trendax::test
