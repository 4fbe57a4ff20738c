#include "Foundation/Json.h"

#include <functional>
#include <gtest/gtest.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

std::string failureOf(const std::function<void()> &read)
{
    try {
        read();
    } catch (const DecodingError &error) {
        return error.errorDescription().toStdString();
    }
    return "no failure";
}

} // namespace

TEST(Json, malformedDocumentsSayWhere)
{
    EXPECT_EQ(failureOf([] { Json::object("{\n  \"a\": 1,\n  \"b\" 2\n}"); }).substr(0, 36),
              "not valid JSON at line 3, column 8: ");
    EXPECT_EQ(failureOf([] { Json::object("[1]"); }), "not a JSON object");
    for (const char *broken : {"", "{", "{\"a\":", "nul", "{}x"}) {
        EXPECT_NE(failureOf([&] { Json::object(broken); }), "no failure") << broken;
    }
    EXPECT_NE(failureOf([] { Json::object(QByteArray(100'000, '[')); }), "no failure");
}

TEST(JsonReader, aWrongTypeNamesTheKeyAndWhatStoodThere)
{
    const JsonReader reader(Json::object(
        R"({"t":"x","b":true,"n":1.5,"i":9007199254740993,"z":null,"l":["a",1],"o":{"inner":{"t":5},"l":[true]}})"));
    const std::pair<std::function<void()>, const char *> rows[] = {
        {[&] { reader.string("b"_L1); }, "\"b\" must be a text, not true"},
        {[&] { reader.string("gone"_L1); }, "\"gone\" must be a text, not nothing"},
        {[&] { reader.boolean("z"_L1); }, "\"z\" must be true or false, not null"},
        {[&] { reader.integer("n"_L1); }, "\"n\" must be a whole number, not a number"},
        {[&] { reader.number("t"_L1); }, "\"t\" must be a number, not a text"},
        {[&] { reader.optionalStrings("l"_L1); }, "\"l[1]\" must be a text, not a number"},
        {[&] { reader.optionalObject("o"_L1)->optionalStrings("l"_L1); },
         "\"o.l[0]\" must be a text, not true"},
        {[&] { reader.optionalObject("o"_L1)->optionalObject("inner"_L1)->string("t"_L1); },
         "\"o.inner.t\" must be a text, not a number"},
    };
    for (const auto &[read, sentence] : rows) {
        EXPECT_EQ(failureOf(read), sentence);
    }
    EXPECT_EQ(reader.integer("i"_L1), 9007199254740993); // beyond what a double holds
    EXPECT_EQ(reader.optionalString("z"_L1), std::nullopt);
    EXPECT_EQ(reader.optionalBoolean("gone"_L1), std::nullopt);
}

} // namespace vesk
