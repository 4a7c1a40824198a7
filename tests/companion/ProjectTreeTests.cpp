#include "companion/ProjectTree.h"

#include <QHash>
#include <QStringList>
#include <QVariantList>
#include <gtest/gtest.h>

namespace navrel {
namespace {

/// A project as navigator replies, by group.
class ProjectTreeTest : public ::testing::Test {
protected:
    void addGroup(const QString& identifier, const QStringList& children) {
        QVariantList items;
        for (const QString& child : children) {
            // Names of groups are capitals here.
            items.append(QVariantMap{{QStringLiteral("name"), child},
                                     {QStringLiteral("identifier"), child},
                                     {QStringLiteral("isGroup"), child.at(0).isUpper() ? 1 : 0}});
        }
        replies_[identifier] = {{QStringLiteral("identifier"), identifier},
                                {QStringLiteral("items"), items}};
    }

    QStringList lines(int atMost = 1000) {
        QStringList result;
        visitProjectTree(
            replies_.value(QStringLiteral("ROOT")),
            [this](const QString& identifier) -> std::optional<QVariantMap> {
                const auto reply = replies_.constFind(identifier);
                return reply == replies_.cend() ? std::nullopt : std::optional(*reply);
            },
            [&](const ProjectTreeEntry& entry) {
                result.append(entry.branches + entry.item.value(QStringLiteral("name")).toString());
                return result.size() < atMost;
            });
        return result;
    }

private:
    QHash<QString, QVariantMap> replies_;
};

TEST_F(ProjectTreeTest, groupsAreEnteredWhereTheyStand) {
    addGroup(QStringLiteral("ROOT"), {QStringLiteral("A"), QStringLiteral("b")});
    addGroup(QStringLiteral("A"), {QStringLiteral("c"), QStringLiteral("D")});
    addGroup(QStringLiteral("D"), {QStringLiteral("e")});

    EXPECT_EQ(lines(), (QStringList{QStringLiteral("├── A"), QStringLiteral("│   ├── c"),
                                    QStringLiteral("│   └── D"), QStringLiteral("│       └── e"),
                                    QStringLiteral("└── b")}));
}

TEST_F(ProjectTreeTest, aGroupWithinItselfIsShownButNotEnteredAgain) {
    addGroup(QStringLiteral("ROOT"), {QStringLiteral("A")});
    addGroup(QStringLiteral("A"), {QStringLiteral("A"), QStringLiteral("ROOT")});

    EXPECT_EQ(lines(), (QStringList{QStringLiteral("└── A"), QStringLiteral("    ├── A"),
                                    QStringLiteral("    └── ROOT")}));
}

TEST_F(ProjectTreeTest, nestingWithoutEndOfTheCallStack) {
    constexpr int kLevels = 10'000;
    addGroup(QStringLiteral("ROOT"), {QStringLiteral("G0")});
    for (int level = 0; level < kLevels; ++level) {
        addGroup(QStringLiteral("G%1").arg(level), {QStringLiteral("G%1").arg(level + 1)});
    }
    EXPECT_EQ(lines(kLevels).size(), kLevels);
}

TEST_F(ProjectTreeTest, theVisitEndsWhenItIsToldTo) {
    addGroup(QStringLiteral("ROOT"), {QStringLiteral("a"), QStringLiteral("b")});
    EXPECT_EQ(lines(1), QStringList{QStringLiteral("├── a")});
}

TEST_F(ProjectTreeTest, aGroupWithoutAnAnswerHasNothingBelow) {
    addGroup(QStringLiteral("ROOT"), {QStringLiteral("A"), QStringLiteral("b")});
    EXPECT_EQ(lines(), (QStringList{QStringLiteral("├── A"), QStringLiteral("└── b")}));
}

} // namespace
} // namespace navrel
