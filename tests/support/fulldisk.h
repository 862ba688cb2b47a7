#pragma once

#include <QString>
#include <sys/resource.h>

namespace trendax::test {

// A folder on a file system that runs out of space on request. As root it is a small tmpfs
// mounted on the folder (unmounted again by the destructor); where mounting is not allowed, the
// process's file size limit is lowered to nothing instead, which fails every write into a
// regular file (with SIGXFSZ ignored) until the destructor restores it.
class FullDisk {
public:
    // Creates the folder and mounts the file system on it; files put there before fill() are
    // written normally.
    explicit FullDisk(const QString& folder);
    ~FullDisk();
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

    // From now on writes into the folder fail for lack of space.
    void fill();

    // "tmpfs" or "RLIMIT_FSIZE", for the test's trace.
    const char* how() const { return mounted_ ? "tmpfs" : "RLIMIT_FSIZE"; }

private:
    QString folder_;
    bool mounted_ = false;
    bool limited_ = false;
    rlimit saved_{};
};

} // namespace trendax::test
