#pragma once

#include <QString>

namespace trendax {

class Environment;

// The diagnostic log "TXDebug.txt" for field support. Off unless the program was started with
// the word "debug"; every line is stamped with the local date and time and opens, writes and
// closes the file, so that a crash loses nothing that was traced before it.
class DebugLog {
public:
    // path: the log file; by default the bare name, so that it lies in the current directory.
    explicit DebugLog(const Environment& environment, QString path = QStringLiteral("TXDebug.txt"));

    // The only switch of the log; set once at start-up.
    bool bbDebugOut = false;

    // Starts a fresh log: "Begin Debug" with 21 full stops, then a line with an empty message.
    void DebugOutBegin();
    // Appends one time-stamped line. Failures lose the line silently.
    void DebugOut(const QString& message);

    // The line as written: general date-time, ": ", TAB, the message, CR LF.
    QByteArray line(const QString& message) const;
    const QString& path() const { return path_; }

private:
    const Environment& environment_;
    QString path_;
};

} // namespace trendax
