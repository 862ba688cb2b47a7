#include "opendlg/sitetree.h"

#include "opendlg/filecopy.h"
#include "storage/filenames.h"
#include "storage/homefolder.h"

#include <QDir>
#include <QSet>
#include <algorithm>

namespace trendax::sitetree {

namespace {

// Two digits at position `from` (0-based) of a text, or -1.
int twoDigits(const QString& text, qsizetype from) {
    if (text.size() < from + 2)
        return -1;
    const QChar a = text[from];
    const QChar b = text[from + 1];
    if (a < QLatin1Char('0') || a > QLatin1Char('9') || b < QLatin1Char('0') ||
        b > QLatin1Char('9'))
        return -1;
    return (a.unicode() - '0') * 10 + (b.unicode() - '0');
}

bool codeOrder(const Site& a, const Site& b) {
    return filenames::lessByName(a.code, b.code);
}

} // namespace

QString historyWorkingCopyName(const QString& hstName) {
    return hstName.left(hstName.size() - 3) + QStringLiteral("txt");
}

std::optional<datetime::DateTime> dayDate(const QString& dayText) {
    if (dayText.size() != 6)
        return std::nullopt;
    const int month = twoDigits(dayText, 0);
    const int day = twoDigits(dayText, 2);
    const int year = twoDigits(dayText, 4);
    if (month < 0 || day < 0 || year < 0)
        return std::nullopt;
    return datetime::fromDate(datetime::fullYear(year), month, day);
}

bool dayOrder(const QString& a, const QString& b) {
    const auto da = dayDate(a);
    const auto db = dayDate(b);
    if (da && db)
        return *da != *db ? *da < *db : a < b;
    if (da || db)
        return bool(da);
    return a < b;
}

KeyKind kindOfKey(const QString& key) {
    if (key.startsWith(QLatin1String("md")))
        return KeyKind::Day;
    if (key.startsWith(QLatin1Char('m')))
        return KeyKind::Site;
    return KeyKind::Root;
}

std::optional<datetime::DateTime> dateOfDayKey(const QString& key) {
    const int month = twoDigits(key, 6);
    const int day = twoDigits(key, 8);
    const int year = twoDigits(key, 10);
    if (month < 0 || day < 0 || year < 0)
        return std::nullopt;
    return datetime::fromDate(datetime::fullYear(year), month, day);
}

QStringList listFiles(const QString& folder) {
    // An empty path would be the process's current folder, which is never meant.
    if (folder.isEmpty())
        return {};
    QStringList names = QDir(folder).entryList(QDir::Files, QDir::Unsorted);
    names.removeIf([](const QString& name) { return homefolder::isOwnTemporary(name); });
    std::sort(names.begin(), names.end(), filenames::lessByName);
    return names;
}

Tree buildFromNames(const QStringList& names,
                    const std::function<QString(const QString& hst, const QString& txt)>& copy) {
    Tree tree;
    // Keys of the tree, lower-cased: a key exists once whatever the letter case of the name.
    QSet<QString> keys;
    bool metDataLog = false;
    for (const QString& name : names) {
        const QString suffix = name.right(4).toUpper();
        if (suffix == QLatin1String(".CSV")) {
            metDataLog = true;
            const QString code = name.left(4);
            const QString dayText = name.mid(4, 6);
            const QString siteKey = QStringLiteral("m") + code;
            if (!keys.contains(siteKey.toLower())) {
                keys.insert(siteKey.toLower());
                tree.sites.push_back({siteKey, code, {}});
            }
            const QString dayKey = QStringLiteral("md") + code + dayText;
            if (keys.contains(dayKey.toLower()))
                continue;
            keys.insert(dayKey.toLower());
            const auto site =
                std::find_if(tree.sites.begin(), tree.sites.end(), [&](const Site& s) {
                    return s.key.compare(siteKey, Qt::CaseInsensitive) == 0;
                });
            // The site key may be held by a day of another site when names are shorter than
            // the usual form; such a day has no site to go under and is passed over.
            if (site != tree.sites.end())
                site->days.push_back({dayKey, dayText});
        } else if (suffix == QLatin1String(".HST")) {
            const QString why = copy(name, historyWorkingCopyName(name));
            if (!why.isEmpty() && !metDataLog) {
                tree.failure = name + QStringLiteral(": ") + why;
                break;
            }
        }
    }
    std::sort(tree.sites.begin(), tree.sites.end(), codeOrder);
    for (Site& site : tree.sites) {
        std::stable_sort(site.days.begin(), site.days.end(),
                         [](const Day& a, const Day& b) { return dayOrder(a.text, b.text); });
    }
    return tree;
}

Tree build(const QString& homeFolder) {
    return buildFromNames(listFiles(homeFolder), [&](const QString& hst, const QString& txt) {
        const QString destination = filenames::resolve(filenames::join(homeFolder, txt));
        const filecopy::Result result =
            filecopy::copy(filenames::join(homeFolder, hst), destination);
        return result.reason;
    });
}

} // namespace trendax::sitetree
