#pragma once

#include <QIcon>
#include <QString>

namespace trendax {

// The program's own toolbar artwork, drawn at run time so it stays sharp at any scale.
// Names: "open", "print", "zoomall", "3dminus", "3dplus", "left", "right", "graph", "scale",
// "points", "stats", "history", "help".
QIcon toolbarIcon(const QString& name);

// The about box's artwork: a pump jack against an evening sky with a trace over it.
QPixmap productArtwork(int width, int height);

} // namespace trendax
