#include "project/EditorRefusal.h"

#include <gtest/gtest.h>

#include <set>

namespace navrel {
namespace {

using Kind = EditorOutcome::Kind;

QString reasonOf(EditorRefusal refusal, const char* editor, const char* words = "") {
    return outcomeOf(refusal, QString::fromUtf8(editor), QString::fromUtf8(words)).reason;
}

TEST(EditorRefusals, eachHasAReasonAndAHintOfItsOwn) {
    std::set<QString> reasons;
    for (const EditorRefusal refusal : allEditorRefusals()) {
        const EditorOutcome outcome = outcomeOf(refusal, QStringLiteral("Vim"));
        EXPECT_FALSE(outcome.isOpen());
        EXPECT_EQ(outcome.editor, QStringLiteral("Vim"));
        EXPECT_TRUE(reasons.insert(outcome.reason).second) << outcome.reason.toStdString();
        for (const QString& sentence : {outcome.reason, outcome.hint}) {
            EXPECT_TRUE(sentence.size() > 1 && sentence.endsWith(u'.')) << sentence.toStdString();
            EXPECT_FALSE(sentence.contains(u'%')) << sentence.toStdString();
        }
    }
    EXPECT_EQ(reasons.size(), static_cast<std::size_t>(EditorRefusal::hasNoOpener) + 1);
}

TEST(EditorRefusals, anEditorThatWaitsForItsUserIsNoFailure) {
    EXPECT_EQ(outcomeOf(EditorRefusal::waitsForAKey).kind, Kind::asksUser);
    EXPECT_EQ(outcomeOf(EditorRefusal::doesNotAnswer).kind, Kind::asksUser);
    EXPECT_EQ(outcomeOf(EditorRefusal::noEditorAnswers).kind, Kind::notRunning);
    EXPECT_EQ(outcomeOf(EditorRefusal::saysWhy).kind, Kind::refused);
}

TEST(EditorRefusals, nameTheEditorOnce) {
    EXPECT_EQ(reasonOf(EditorRefusal::waitsForAKey, "Vim"), QStringLiteral("Vim waits for a key."));
    EXPECT_EQ(reasonOf(EditorRefusal::waitsForAKey, ""),
              QStringLiteral("The editor waits for a key."));
    EXPECT_EQ(reasonOf(EditorRefusal::saysWhy, "Vim", "E37: No write since last change"),
              QStringLiteral("Vim: E37: No write since last change."));
    EXPECT_EQ(reasonOf(EditorRefusal::saysWhy, "Vim", "Vim is in the middle of something."),
              QStringLiteral("Vim is in the middle of something."));
    EXPECT_EQ(reasonOf(EditorRefusal::saysWhy, "Vim", "Vim:E21: Cannot make changes"),
              QStringLiteral("Vim:E21: Cannot make changes."));
    EXPECT_EQ(reasonOf(EditorRefusal::saysWhy, "Vim", " ... "),
              QStringLiteral("Vim gave no reason."));
    EXPECT_EQ(reasonOf(EditorRefusal::saysWhy, "%1 %2", "100 %1"),
              QStringLiteral("%1 %2: 100 %1."));
}

} // namespace
} // namespace navrel
