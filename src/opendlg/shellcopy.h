#pragma once

#include <QByteArray>
#include <QString>

class QWidget;

namespace trendax {

class Dialogs;

// Copies one file in front of the user: a progress window titled "Copying " + source + " to " +
// destination stays up while the bytes move, an existing destination is replaced without
// asking and a missing folder is created. On failure the bare error number is shown in a message
// with an OK button. Returns that number, 0 on success. The window has no Cancel button: an
// abandoned copy would otherwise be followed by the deletion of its source.
int CopyWithShell(const QString& source, const QString& destination, QWidget* owner,
                  Dialogs& dialogs);
// The same for a source named by its bytes; shownSource is its name in the window's title.
int CopyWithShell(const QByteArray& source, const QString& shownSource, const QString& destination,
                  QWidget* owner, Dialogs& dialogs);

} // namespace trendax
