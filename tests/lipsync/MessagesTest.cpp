#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "lipsync/SerializationTraits.h"
#include "tests/support/Files.h"

TEST(Messages, AreDocumented) {
    std::ifstream file(tests::sourceFile("docs/protocol.md"));
    const std::string page(std::istreambuf_iterator<char>(file), {});
    velta::utilities::visitAll(velta::zub::lipsync::MessageTraits{}, [&](auto trait) {
        EXPECT_NE(page.find(std::string("`") + trait.tag + '`'), std::string::npos) << trait.tag;
        return true;
    });
}
