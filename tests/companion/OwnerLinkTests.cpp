#include "companion/link/EventReader.h"
#include "companion/link/OwnerLink.h"
#include "companion/terminal/OwnerSource.h"
#include "companion/terminal/QRText.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace navrel {
namespace {

TEST(EventReader, eventsAreReadInWhateverPieces) {
    std::string read;
    EventReader reader([&read](std::string_view name, std::string_view data) {
        read.append(name).append("=").append(data).append(";");
        return name != "opened";
    });
    EXPECT_TRUE(reader.receive("event: hel"));
    EXPECT_TRUE(reader.receive("lo\ndata: {}\n\n:\n\nevent: state\ndata: 1\n"));
    EXPECT_FALSE(reader.receive("\nevent: opened\ndata: 2\n\n"));
    EXPECT_EQ(read, "hello={};state=1;opened=2;");
}

TEST(OwnerLink, withoutASocketNothingAnswers) {
    const OwnerLink nowhere("/nonexistent/socket");
    EXPECT_FALSE(nowhere.ask("GET", "/api/state").has_value());
    EXPECT_EQ(nowhere.readEvents([](auto, auto) { return true; }, std::nullopt),
              OwnerLink::End::lost);
    OwnerSource source(nowhere);
    for (const CodeAnswer& answer : {source.tree(), source.open("1", "a", 2, 0), source.back()}) {
        EXPECT_EQ(answer.result, CommandResult::noNavrel);
        EXPECT_FALSE(answer.hint.isEmpty());
    }
}

TEST(QRText, aCodeIsDrawnInHalfBlocks) {
    const QString text =
        qrText("http://localhost:2346/#p=AAAAAAAAAAAAAAAAAAAAAA", TerminalText::Style::plain);
    const QStringList lines = text.split(QLatin1Char('\n'));
    constexpr int kSide = 29 + 4; // squares of a code for such a text, and the margins
    EXPECT_EQ(lines.size(), (kSide + 1) / 2 + 1);
    EXPECT_EQ(lines.at(0), QString(kSide, QLatin1Char(' ')));
    EXPECT_EQ(lines.at(1).left(9), QStringLiteral("  █▀▀▀▀▀█")); // the mark in the corner
    const QString coloured = qrText("x", TerminalText::Style::coloured);
    EXPECT_TRUE(coloured.startsWith(QStringLiteral("\x1b[38;5;16;48;5;231m")));
}

} // namespace
} // namespace navrel
