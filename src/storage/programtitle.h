#pragma once

#include <QString>

namespace trendax {

// The program's title, "Trendax2": the settings store's application name and the title of every
// message that has none of its own.
QString programTitle();

// The main window's caption with the version, "Trendax 2 - V3.0.7"; a load adds the site.
QString mainWindowCaption();

} // namespace trendax
