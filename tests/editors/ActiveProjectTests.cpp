#include "editors/ActiveProject.h"
#include "tests/FakeClock.h"
#include "tests/WaitUntil.h"
#include "tests/editors/ScratchEnvironment.h"

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <semaphore>
#include <thread>

namespace navrel {
namespace {

/// Knows which projects list which files; asked on a thread of its own.
class FakeListing {
public:
    void set(const QByteArray& file, const QByteArray& bundle) {
        const std::lock_guard lock(mutex_);
        bundles_[file] = bundle;
    }
    std::optional<QByteArray> of(const QByteArray& file) {
        const std::lock_guard lock(mutex_);
        ++questions_;
        thread_ = std::this_thread::get_id();
        const auto found = bundles_.find(file);
        return found == bundles_.end() ? std::nullopt : std::optional(found->second);
    }
    int questions() const {
        const std::lock_guard lock(mutex_);
        return questions_;
    }
    std::thread::id thread() const {
        const std::lock_guard lock(mutex_);
        return thread_;
    }

private:
    mutable std::mutex mutex_;
    std::map<QByteArray, QByteArray> bundles_;
    int questions_ = 0;
    std::thread::id thread_;
};

class ActiveProjectTest : public ::testing::Test {
protected:
    QByteArray writeBundle(const QByteArray& path) const {
        const QByteArray bundle = environment.bytesOf(path);
        ScratchEnvironment::write(bundle + "/project.pbxproj", "");
        return bundle;
    }
    QByteArray projectOf(const QByteArray& file) {
        return projects.of(environment.bytesOf(file), QDeadlineTimer(std::chrono::seconds(20)))
            .value_or("late");
    }
    /// Asks for a file's project until it is this one.
    bool becomes(const QByteArray& file, const QByteArray& bundle) {
        return waitUntil([&] { return projectOf(file) == bundle; });
    }

    ScratchEnvironment environment;
    FakeClock clock;
    std::shared_ptr<FakeListing> listing = std::make_shared<FakeListing>();
    ActiveProject projects{
        [listing = listing](const QByteArray& file) { return listing->of(file); }, clock};
};

TEST_F(ActiveProjectTest, theProjectThatListsTheFileComesBeforeTheNearest) {
    const QByteArray app = writeBundle("App.xcodeproj");
    const QByteArray library = writeBundle("Library/Library.xcodeproj");
    listing->set(environment.bytesOf("Library/a.m"), app);
    EXPECT_EQ(projectOf("Library/a.m"), library) << "nothing else is known yet";
    EXPECT_TRUE(becomes("Library/a.m", app));
    EXPECT_NE(listing->thread(), std::this_thread::get_id());
}

TEST_F(ActiveProjectTest, ofTwoInOneFolderTheOneThatListsTheFileIsIt) {
    writeBundle("One.xcodeproj");
    const QByteArray two = writeBundle("Two.xcodeproj");
    listing->set(environment.bytesOf("a.m"), two);
    EXPECT_TRUE(becomes("a.m", two));
}

TEST_F(ActiveProjectTest, theNearestDecidesWhereNoneListsTheFile) {
    const QByteArray app = writeBundle("App.xcodeproj");
    EXPECT_EQ(projectOf("a.m"), app);
    EXPECT_TRUE(waitUntil([&] { return listing->questions() > 0; }));
    EXPECT_TRUE(becomes("a.m", app));
    EXPECT_EQ(projects.of("", QDeadlineTimer(QDeadlineTimer::Forever)), QByteArray(""));
}

TEST_F(ActiveProjectTest, aNeighbourIsTakenToBelongToTheSameProjectUntilThatIsKnown) {
    const QByteArray app = writeBundle("App.xcodeproj");
    const QByteArray library = writeBundle("Library/Library.xcodeproj");
    const QByteArray other = writeBundle("Other/Other.xcodeproj");
    listing->set(environment.bytesOf("Library/a.m"), app);
    ASSERT_TRUE(becomes("Library/a.m", app));
    EXPECT_EQ(projectOf("Library/b.m"), app);
    EXPECT_TRUE(becomes("Library/b.m", library));
    EXPECT_EQ(projectOf("Other/c.m"), other);
}

TEST_F(ActiveProjectTest, theSameFileIsAskedForAgainAfterAWhile) {
    const QByteArray app = writeBundle("App.xcodeproj");
    const QByteArray library = writeBundle("Library/Library.xcodeproj");
    listing->set(environment.bytesOf("Library/a.m"), app);
    ASSERT_TRUE(becomes("Library/a.m", app));
    listing->set(environment.bytesOf("Library/a.m"), library);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(projectOf("Library/a.m"), app);
    }
    EXPECT_EQ(listing->questions(), 1);
    clock.advance(ActiveProject::kAskedAgainAfter);
    EXPECT_EQ(projectOf("Library/a.m"), app) << "until the answer is there, the last one stands";
    EXPECT_TRUE(becomes("Library/a.m", library));
    EXPECT_EQ(listing->questions(), 2);
}

TEST_F(ActiveProjectTest, aSlowAnswerHoldsUpNothingAndOneQuestionIsUnderWayAtATime) {
    const QByteArray app = writeBundle("App.xcodeproj");
    const auto gate = std::make_shared<std::counting_semaphore<>>(0);
    const auto asked = std::make_shared<std::atomic<int>>(0);
    ActiveProject slow(
        [gate, asked, app](const QByteArray&) {
            ++*asked;
            gate->acquire();
            return std::optional(app);
        },
        clock);
    const QDeadlineTimer deadline(std::chrono::seconds(20));
    const QByteArray nearest = writeBundle("Library/Library.xcodeproj");
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(slow.of(environment.bytesOf("Library/" + QByteArray::number(i)), deadline),
                  nearest);
        clock.advance(ActiveProject::kAskedAgainAfter);
    }
    EXPECT_TRUE(waitUntil([&] { return *asked == 1; }));
    gate->release(2);
    const QByteArray last = environment.bytesOf("Library/99");
    EXPECT_TRUE(waitUntil([&] { return slow.of(last, deadline) == app; }));
    EXPECT_EQ(*asked, 2) << "for the first file, and for the last";
}

TEST_F(ActiveProjectTest, withNoTimeLeftWhatIsKnownStands) {
    const QByteArray app = writeBundle("App.xcodeproj");
    writeBundle("Library/Library.xcodeproj");
    const QByteArray file = environment.bytesOf("Library/a.m");
    listing->set(file, app);
    const QDeadlineTimer over(0);
    EXPECT_EQ(projects.of(file, over), std::nullopt);
    ASSERT_TRUE(becomes("Library/a.m", app));
    EXPECT_EQ(projects.of(file, over), app);
}

} // namespace
} // namespace navrel
