#include "tests/project/OpenStore.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace navrel {
namespace {

constexpr int kElementsInSave = 300;

/// What the child does until it is killed: each save replaces all elements and counts on; the count
/// is told through the pipe once the save has returned.
[[noreturn]] void saveForEver(const QString& path, int pipe) {
    const OpenStore store(path);
    if (store->filetypes().empty()) {
        store->insertFiletype();
        store->insertObject().setIndex(0);
    }
    CDObject& counter = *store->objects().front();
    CDFiletype& filetype = *store->filetypes().front();
    for (qint32 count = counter.index().value_or(0) + 1;; ++count) {
        counter.setIndex(count);
        filetype.setAllowed(count % 2 == 1);
        for (CDElement* element : store->elements()) {
            store->deleteElement(*element);
        }
        for (int line = 0; line < kElementsInSave; ++line) {
            CDElement& element = store->insertElement();
            element.setLine(count);
            element.setName(QByteArray(100, 'x'));
        }
        if (store->save() || ::write(pipe, &count, sizeof count) != sizeof count) {
            ::_exit(1);
        }
    }
}

/// Runs the child for a time and kills it. The last count whose save had returned, or 0.
qint32 killWhileSaving(const QString& path, int milliseconds) {
    std::array<int, 2> pipe{};
    EXPECT_EQ(::pipe(pipe.data()), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(pipe[0]);
        saveForEver(path, pipe[1]);
    }
    ::close(pipe[1]);
    // The child's writing does not wake it: nobody asks for readiness to read.
    struct pollfd end = {pipe[0], 0, 0};
    ::poll(&end, 1, milliseconds);
    EXPECT_EQ(end.revents, 0) << "the child ended by itself";
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);

    qint32 last = 0;
    for (qint32 count = 0; ::read(pipe[0], &count, sizeof count) == sizeof count;) {
        last = count;
    }
    ::close(pipe[0]);
    return last;
}

TEST(StoreKill, noSaveThatReturnedIsLostAndTheFileOpensWheneverTheProgramIsKilled) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("store"));
    std::mt19937 random(50); // the same moments in every run, as far as the machine allows
    qint32 saved = 0;
    unsigned latest = 60; // milliseconds
    for (int round = 0; round < 50; ++round) {
        saved = std::max(saved, killWhileSaving(path, static_cast<int>(random() % latest)));
        if (saved == 0) {
            latest = std::min(2 * latest, 10'000U); // a busy machine has not even started to save
        }

        const OpenStore store(path);
        ASSERT_FALSE(store.error().has_value()) << store.error()->description().toStdString();
        if (store->objects().empty()) {
            ASSERT_EQ(saved, 0);
            continue;
        }
        const qint32 found = store->objects().front()->index().value();
        EXPECT_GE(found, saved);
        // Of the save that is there, all of it is.
        EXPECT_EQ(store->filetypes().front()->allowed(), found % 2 == 1);
        ASSERT_EQ(store->elements().size(), kElementsInSave);
        for (const CDElement* element : store->elements()) {
            EXPECT_EQ(element->line(), found);
        }
    }
    EXPECT_GT(saved, 0);
}

} // namespace
} // namespace navrel
