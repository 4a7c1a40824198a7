// The real program, the real Neovim, and a client that listens to events as the web app does.

#include "tests/SmallProject.h"
#include "tests/WaitUntil.h"
#include "tests/editors/ScratchEnvironment.h"
#include "tests/endtoend/HeadlessNeovim.h"
#include "tests/endtoend/NavrelProcess.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

namespace navrel {
namespace {

/// A program of the same user, on the socket that serves the owner.
class EventClient {
public:
    explicit EventClient(const QString& path) {
        socket_.connectToServer(path);
        if (!isConnected()) {
            return;
        }
        socket_.write("GET /api/events HTTP/1.1\r\nHost: localhost\r\n\r\n");
        socket_.flush();
    }
    bool isConnected() const { return socket_.state() == QLocalSocket::ConnectedState; }

    /// The data of the newest event of a name; nothing where none has come.
    std::optional<QJsonObject> latest(const char* event) {
        received_ += socket_.readAll();
        const QByteArray head = QByteArray("event: ") + event + "\ndata: ";
        const qsizetype begin = received_.lastIndexOf(head);
        const qsizetype end = begin < 0 ? -1 : received_.indexOf('\n', begin + head.size());
        if (end < 0) {
            return std::nullopt;
        }
        const qsizetype from = begin + head.size();
        return QJsonDocument::fromJson(received_.mid(from, end - from)).object();
    }

private:
    QLocalSocket socket_;
    QByteArray received_;
};

struct Place {
    const char* file;
    int line;
    const char* symbol; ///< empty for none
};

constexpr char kSwift[] = R"(import Foundation

struct Tide {
    let height: Double
    var isHigh: Bool {
        height > 1
    }
    func move(to place: Int, by step: Int) {
        let next = place
        print(next)
    }
    enum Kind {
        case spring
        case neap
    }
    init(height: Double) {
        self.height = height
    }
    subscript(index: Int) -> Int {
        index
    }
}

extension Tide {
    static func none() -> Tide {
        Tide(height: 0)
    }
}

func free() {
    print(1)
}
)";

constexpr char kObjectiveC[] = R"(#import <Foundation/Foundation.h>

@interface Boat : NSObject
@property(nonatomic) int speed;
- (void)sailTo:(int)place by:(int)step;
@end

@implementation Boat
- (void)sailTo:(int)place by:(int)step {
    int next = place;
    (void)next;
}
+ (instancetype)boat {
    return [self new];
}
@end

static int depth(int x) {
    return x;
}
)";

constexpr char kCPlusPlus[] = R"(namespace sea {
class Wave {
public:
    explicit Wave(int height);
    ~Wave();
    int height() const {
        return height_;
    }
private:
    int height_;
};
Wave::~Wave() {
}
bool operator<(const Wave& a, const Wave& b) {
    return a.height() < b.height();
}
}
int main() {
    return 0;
}
)";

const std::vector<Place> kPlaces = {
    {"T.swift", 1, ""},
    {"T.swift", 2, ""},
    {"T.swift", 3, "Tide"},
    {"T.swift", 4, "height"},
    {"T.swift", 5, "isHigh"},
    {"T.swift", 6, "isHigh"},
    {"T.swift", 7, "isHigh"},
    {"T.swift", 8, "move(to:by:)"},
    {"T.swift", 9, "move(to:by:)"},
    {"T.swift", 10, "move(to:by:)"},
    {"T.swift", 11, "move(to:by:)"},
    {"T.swift", 12, "Kind"},
    {"T.swift", 13, "spring"},
    {"T.swift", 14, "neap"},
    {"T.swift", 15, "Kind"},
    {"T.swift", 16, "init(height:)"},
    {"T.swift", 17, "init(height:)"},
    {"T.swift", 18, "init(height:)"},
    {"T.swift", 19, "subscript(_:)"},
    {"T.swift", 20, "subscript(_:)"},
    {"T.swift", 21, "subscript(_:)"},
    {"T.swift", 22, "Tide"},
    {"T.swift", 23, "Tide"},
    {"T.swift", 24, "Tide"},
    {"T.swift", 25, "none()"},
    {"T.swift", 26, "none()"},
    {"T.swift", 27, "none()"},
    {"T.swift", 30, "free()"},
    {"T.swift", 31, "free()"},
    {"T.swift", 32, "free()"},
    {"T.m", 1, ""},
    {"T.m", 3, "Boat"},
    {"T.m", 4, "speed"},
    {"T.m", 5, "-sailTo:by:"},
    {"T.m", 6, "Boat"},
    {"T.m", 8, "Boat"},
    {"T.m", 9, "-sailTo:by:"},
    {"T.m", 11, "-sailTo:by:"},
    {"T.m", 12, "-sailTo:by:"},
    {"T.m", 13, "+boat"},
    {"T.m", 15, "+boat"},
    {"T.m", 18, "depth"},
    {"T.m", 20, "depth"},
    {"T.cpp", 1, "sea"},
    {"T.cpp", 2, "Wave"},
    {"T.cpp", 4, "Wave"},
    {"T.cpp", 5, "~Wave"},
    {"T.cpp", 6, "height"},
    {"T.cpp", 8, "height"},
    {"T.cpp", 9, "Wave"},
    {"T.cpp", 10, "height_"},
    {"T.cpp", 14, "operator<"},
    {"T.cpp", 16, "operator<"},
    {"T.cpp", 18, "main"},
    {"T.cpp", 20, "main"},
};

class Follow : public ::testing::Test {
protected:
    Follow() {
        for (const auto& [name, text] :
             {std::pair("T.swift", kSwift), std::pair("T.m", kObjectiveC),
              std::pair("T.cpp", kCPlusPlus)}) {
            project.writeFile(QString::fromUtf8(name), text);
            project.addEntry(QByteArray(name).replace('.', 'X'), name);
        }
        environment.set("NVIM", environment.bytesOf("neovim"));
    }
    void startNavrel() {
        navrel.setLastKnownProject(project.bundle());
        navrel.setEnvironment(QStringLiteral("XDG_RUNTIME_DIR"),
                              environment.pathOf(QStringLiteral("xdg_runtime_dir")));
        ASSERT_TRUE(navrel.start());
    }
    /// A client that is served.
    std::unique_ptr<EventClient> client() const {
        const QString socket =
            environment.pathOf(QStringLiteral("xdg_runtime_dir/nl.kelvane.Navrel.sock"));
        std::unique_ptr<EventClient> connected;
        EXPECT_TRUE(waitUntil([&] {
            connected = std::make_unique<EventClient>(socket);
            return connected->isConnected();
        }));
        EXPECT_TRUE(waitUntil([&] { return connected->latest("hello").has_value(); }));
        return connected;
    }
    QString neovimSocket() const { return environment.pathOf(QStringLiteral("neovim")); }

    ScratchEnvironment environment;
    SmallProject project;
    NavrelProcess navrel;
};

class FollowNeovim : public Follow {
protected:
    void SetUp() override {
        if (!HeadlessNeovim::isAvailable()) {
            GTEST_SKIP() << "needs nvim";
        }
        ASSERT_TRUE(neovim.start(neovimSocket(), project.folder() + QStringLiteral("/T.swift")));
        ASSERT_NO_FATAL_FAILURE(startNavrel());
        follower = client();
    }
    /// Nor does it have them while it does not answer: nothing was seen then.
    bool hasAutomaticCommands() const {
        return neovim.valueOf(QStringLiteral("execute('augroup')")).contains("navrel-");
    }
    bool hasNoAutomaticCommands() const {
        const QByteArray groups = neovim.valueOf(QStringLiteral("execute('augroup')"));
        return groups.contains("nvim") && !groups.contains("navrel-");
    }

    HeadlessNeovim neovim;
    std::unique_ptr<EventClient> follower;
};

TEST_F(FollowNeovim, theSymbolUnderTheCursorIsRight) {
    for (const Place& place : kPlaces) {
        neovim.valueOf(QStringLiteral("execute('edit +%1 %2/%3')")
                           .arg(place.line)
                           .arg(project.folder(), QString::fromUtf8(place.file)));
        QJsonObject active;
        const auto isThere = [&] {
            active = follower->latest("active").value_or(QJsonObject());
            const QJsonObject file = active.value(QStringLiteral("file")).toObject();
            return file.value(QStringLiteral("name")) == QString::fromUtf8(place.file) &&
                   file.value(QStringLiteral("line")) == place.line;
        };
        ASSERT_TRUE(waitUntil(isThere)) << place.file << ':' << place.line;
        const QJsonObject symbol = active.value(QStringLiteral("symbol")).toObject();
        EXPECT_EQ(symbol.value(QStringLiteral("name")).toString().toStdString(), place.symbol)
            << place.file << ':' << place.line;
    }
}

TEST_F(FollowNeovim, aKillLeavesNoAutomaticCommandsBehind) {
    // Which file is active may be known before they are there: that is asked for as well.
    ASSERT_TRUE(waitUntil([&] { return hasAutomaticCommands(); }));
    navrel.kill();
    EXPECT_TRUE(waitUntil([&] { return hasNoAutomaticCommands(); }));
}

TEST_F(FollowNeovim, aClientThatLeavesTakesThemWithIt) {
    ASSERT_TRUE(waitUntil([&] { return hasAutomaticCommands(); }));
    follower = nullptr;
    EXPECT_TRUE(waitUntil([&] { return hasNoAutomaticCommands(); }));
    // Nor do they come back.
    const QDeadlineTimer severalRounds(std::chrono::seconds(3));
    EXPECT_FALSE(waitUntil([&] { return severalRounds.hasExpired() || hasAutomaticCommands(); }) &&
                 hasAutomaticCommands());
    EXPECT_TRUE(navrel.isRunning());
}

} // namespace
} // namespace navrel
