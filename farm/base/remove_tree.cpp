#include "farm/base/remove_tree.h"

#include "farm/base/random.h"

#include <QFile>

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace farm {

namespace {

/// An open folder. Opening it changes its permissions so that the owner may read and change it.
class Folder
{
public:
    Folder(int parent, const std::string& name)
    {
        const int place = ::openat(parent, name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (place < 0)
            return;
        struct stat info = {};
        // The mode is changed through /proc: such a descriptor does not allow it, and the folder's name may become a
        // link.
        const std::string self = "/proc/self/fd/" + std::to_string(place);
        if (::fstat(place, &info) == 0 && (info.st_mode & S_IRWXU) != S_IRWXU)
            ::chmod(self.c_str(), S_IRWXU);
        m_file = ::openat(place, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(place);
    }
    ~Folder()
    {
        if (m_file >= 0)
            ::close(m_file);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    bool IsOpen() const { return m_file >= 0; }
    int File() const { return m_file; }

    std::vector<std::string> Entries() const
    {
        std::vector<std::string> names;
        const int copy = ::openat(m_file, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        DIR* const folder = copy < 0 ? nullptr : ::fdopendir(copy);
        if (!folder) {
            if (copy >= 0)
                ::close(copy);
            return names;
        }
        while (const dirent* const entry = ::readdir(folder)) {
            const std::string name = static_cast<const char*>(entry->d_name);
            if (name != "." && name != "..")
                names.push_back(name);
        }
        ::closedir(folder);
        return names;
    }

    /// Removes a file, a link or an empty folder.
    bool Remove(const std::string& name) const
    {
        return ::unlinkat(m_file, name.c_str(), 0) == 0 || ::unlinkat(m_file, name.c_str(), AT_REMOVEDIR) == 0
            || errno == ENOENT;
    }

private:
    int m_file = -1;
};

/// Empties a folder of `top` and removes it. Its subfolders are moved to `top`, so that no nesting is too deep.
void Flatten(const Folder& top, const std::string& name, const std::function<bool()>& goesOn)
{
    const Folder folder(top.File(), name);
    if (!folder.IsOpen())
        return;
    for (const std::string& entry : folder.Entries()) {
        if (!goesOn())
            return;
        if (folder.Remove(entry))
            continue;
        // A folder can be moved only by a user who may change it, so it is opened first.
        const Folder inner(folder.File(), entry);
        if (inner.IsOpen())
            ::renameat(folder.File(), entry.c_str(), top.File(), NewId().toStdString().c_str());
    }
    top.Remove(name);
}

} // namespace

bool RemoveTree(const QString& path, const std::function<bool()>& goesOn)
{
    const std::string name = QFile::encodeName(path).toStdString();
    if (::unlink(name.c_str()) == 0 || errno == ENOENT)
        return true;
    {
        const Folder top(AT_FDCWD, name);
        if (!top.IsOpen())
            return false;
        std::vector<std::string> before;
        for (auto entries = top.Entries(); !entries.empty() && entries != before; entries = top.Entries()) {
            for (const std::string& entry : entries) {
                if (!goesOn())
                    return false;
                if (!top.Remove(entry))
                    Flatten(top, entry, goesOn);
            }
            before = std::move(entries);
        }
    }
    return ::rmdir(name.c_str()) == 0;
}

} // namespace farm
