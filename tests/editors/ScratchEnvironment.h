#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QString>
#include <QTemporaryDir>

#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>

namespace navrel {

/// A world in which no editor runs: scratch folders in the place of the session's, the variables
/// that name editors unset. What was there is back when it is destroyed.
class ScratchEnvironment {
public:
    ScratchEnvironment() {
        for (const char* name : {"NVIM", "NVIM_LISTEN_ADDRESS", "EMACS_SOCKET_NAME",
                                 "EMACS_SERVER_FILE", "NAVREL_EDITOR", "TMUX"}) {
            unset(name);
        }
        for (const char* name : {"XDG_RUNTIME_DIR", "TMPDIR", "HOME"}) {
            const QString folder = QString::fromUtf8(name).toLower();
            QDir(path()).mkdir(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
            set(name, pathOf(folder).toUtf8());
        }
    }
    ~ScratchEnvironment() {
        // Qt's own removal leaves files whose names are not UTF-8.
        std::error_code ignored;
        std::filesystem::remove_all(folder_.path().toStdString(), ignored);
        for (auto entry = previous_.begin(); entry != previous_.end(); ++entry) {
            if (*entry) {
                qputenv(entry.key().constData(), **entry);
            } else {
                qunsetenv(entry.key().constData());
            }
        }
    }
    ScratchEnvironment(const ScratchEnvironment&) = delete;
    ScratchEnvironment& operator=(const ScratchEnvironment&) = delete;

    void set(const char* name, const QByteArray& value) {
        remember(name);
        qputenv(name, value);
    }
    void unset(const char* name) {
        remember(name);
        qunsetenv(name);
    }

    QString path() const { return folder_.path(); }
    QString pathOf(const QString& name) const { return folder_.filePath(name); }
    QByteArray bytesOf(const QByteArray& name) const { return path().toUtf8() + '/' + name; }

    /// Writes a file, with the folders above it. Names are bytes: they need not be valid UTF-8.
    static void write(const QByteArray& path, const QByteArray& text) {
        const std::filesystem::path name = path.toStdString();
        std::filesystem::create_directories(name.parent_path());
        std::ofstream(name, std::ios::binary) << text.toStdString();
    }
    static QByteArray read(const QByteArray& path) {
        std::ostringstream text;
        text << std::ifstream(path.toStdString(), std::ios::binary).rdbuf();
        return QByteArray::fromStdString(text.str());
    }
    /// A text of so many lines: "line 1" and so on.
    static QByteArray lines(int count) {
        QByteArray text;
        for (int line = 1; line <= count; ++line) {
            text += "line " + QByteArray::number(line) + '\n';
        }
        return text;
    }

private:
    void remember(const char* name) {
        if (!previous_.contains(name)) {
            previous_.insert(name, qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name))
                                                                   : std::nullopt);
        }
    }

    QTemporaryDir folder_;
    QHash<QByteArray, std::optional<QByteArray>> previous_;
};

} // namespace navrel
