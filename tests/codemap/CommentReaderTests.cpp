#include "codemap/CommentReader.h"
#include "codemap/LineCounter.h"
#include "codemap/OutlineBuilder.h"
#include "tests/codemap/OutlineText.h"

#include <gtest/gtest.h>

#include <string>

namespace navrel {
namespace {

/// What a comment that begins on line 5 says.
std::string said(std::string_view comment) {
    const std::string before = "\n\n\n\n";
    const std::string text = before + std::string(comment);
    LineCounter lines(text);
    OutlineBuilder builder(Language::swift);
    readComment(std::string_view(text).substr(before.size()), before.size(), lines, builder);
    return textOf(builder.finish(100));
}

TEST(CommentReader, anOrdinaryCommentSaysNothing) {
    EXPECT_EQ(said("// The tide turns at noon: see the table."), "");
    EXPECT_EQ(said("//"), "");
    EXPECT_EQ(said("/**/"), "");
    EXPECT_EQ(said("/*/"), "");
}

TEST(CommentReader, aMarkIsAHeading) {
    EXPECT_EQ(said("// MARK: View"), "heading 5 View\n");
    EXPECT_EQ(said("//MARK:View"), "heading 5 View\n");
    EXPECT_EQ(said("/// mark: View  "), "heading 5 View\n");
    EXPECT_EQ(said("/* MARK: View */"), "heading 5 View\n");
}

TEST(CommentReader, aDashMakesTheHeadingASeparator) {
    EXPECT_EQ(said("// MARK: - View"), "heading 5 - View\n");
    EXPECT_EQ(said("// MARK:- View"), "heading 5 - View\n");
    EXPECT_EQ(said("// MARK: -View"), "heading 5 - View\n");
    EXPECT_EQ(said("// MARK: -"), "heading 5 -\n");
}

TEST(CommentReader, aMarkNeedsAColonATextAndTheBeginningOfTheComment) {
    EXPECT_EQ(said("// MARK - View"), "");
    EXPECT_EQ(said("// MARK:"), "");
    EXPECT_EQ(said("// see MARK: View"), "");
    EXPECT_EQ(said("// // MARK: View"), "");
    EXPECT_EQ(said("// MARKER: View"), "");
}

TEST(CommentReader, notesAreFoundAtTheBeginningInAnyLetterCase) {
    EXPECT_EQ(said("// TODO: Ask the harbour"), "note 5 todo Ask the harbour\n");
    EXPECT_EQ(said("// Fixme : Ask"), "note 5 fixme Ask\n");
    EXPECT_EQ(said("/* hack: Ask */"), "note 5 hack Ask\n");
    EXPECT_EQ(said("// XXX: Ask"), "note 5 xxx Ask\n");
    EXPECT_EQ(said("// Warning: Ask"), "note 5 warning Ask\n");
}

TEST(CommentReader, aNoteInCapitalsNeedsNoColon) {
    EXPECT_EQ(said("// TODO ask the harbour"), "note 5 todo ask the harbour\n");
    EXPECT_EQ(said("// TODO - ask"), "note 5 todo ask\n");
    EXPECT_EQ(said("// FIXME"), "note 5 fixme\n");
    EXPECT_EQ(said("// todo ask"), "");
    EXPECT_EQ(said("// WARNING ask"), "");
    EXPECT_EQ(said("// TODOS are ill"), "");
    EXPECT_EQ(said("// XXXL"), "");
}

TEST(CommentReader, aNoteMayNameItsAuthor) {
    EXPECT_EQ(said("// TODO(mia): Ask"), "note 5 todo Ask\n");
    EXPECT_EQ(said("// todo(mia): Ask"), "note 5 todo Ask\n");
    EXPECT_EQ(said("// FIXME(mia) Ask"), "note 5 fixme Ask\n");
}

TEST(CommentReader, behindOtherWordsANoteNeedsCapitalsAndAColon) {
    EXPECT_EQ(said("// Slow. TODO: Ask: twice"), "note 5 todo Ask: twice\n");
    EXPECT_EQ(said("// Slow. TODO Ask"), "");
    EXPECT_EQ(said("// Slow. todo: Ask"), "");
    EXPECT_EQ(said("// MYTODO: Ask"), "");
}

TEST(CommentReader, aShortcutStandsAnywhereInALine) {
    EXPECT_EQ(said("// navrel: Harbour"), "note 5 shortcut Harbour\n");
    EXPECT_EQ(said("//NAVREL:Harbour"), "note 5 shortcut Harbour\n");
    EXPECT_EQ(said("// off: //  navrel:   - Harbour"), "note 5 shortcut - Harbour\n");
    EXPECT_EQ(said("/* // navrel: Harbour\n */"), "note 5 shortcut Harbour\n");
}

TEST(CommentReader, aShortcutNeedsItsSignsAndAText) {
    EXPECT_EQ(said("// navrel:"), "");
    EXPECT_EQ(said("// navrel:   "), "");
    EXPECT_EQ(said("/* navrel: Harbour */"), "");
    EXPECT_EQ(said("// see navrel: Harbour"), "");
}

TEST(CommentReader, eachLineOfABlockIsRead) {
    EXPECT_EQ(said("/**\n * TODO: Ask\n\n   FIXME: Tell\r\n * MARK: - View\n */"),
              "heading 9 - View\nnote 6 todo Ask\nnote 8 fixme Tell\n");
}

} // namespace
} // namespace navrel
