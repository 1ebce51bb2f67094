// The class reference of the guide against the interface definition: every
// method of every interface is on the page with its vtable slot and DISPID,
// so that a change of the surface cannot leave the page behind.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>
#include <string>

namespace {

std::string ReadFile(const char* path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

TEST(ClassReferencePage, EveryMethodIsListedWithItsSlotAndDispid) {
  const std::string idl = ReadFile(TAVRINE_IDL);
  const std::string page = ReadFile(TAVRINE_CLASS_REFERENCE_PAGE);
  ASSERT_FALSE(idl.empty()) << TAVRINE_IDL;
  ASSERT_FALSE(page.empty()) << TAVRINE_CLASS_REFERENCE_PAGE;
  const std::regex interface_block(R"(interface (_\w+) : IDispatch \{([^}]*)\})");
  const std::regex method(R"(\[id\((0x[0-9A-Fa-f]+)\)\]\s*HRESULT\s+(\w+)\()");
  int interfaces = 0, methods = 0;
  for (auto block = std::sregex_iterator(idl.begin(), idl.end(), interface_block); block != std::sregex_iterator();
       ++block) {
    ++interfaces;
    const std::string name = (*block)[1];
    const std::string body = (*block)[2];
    EXPECT_NE(page.find("## `" + name.substr(1) + "`"), std::string::npos) << "no section for " << name;
    int slot = 7;  // after IUnknown and IDispatch
    for (auto m = std::sregex_iterator(body.begin(), body.end(), method); m != std::sregex_iterator(); ++m, ++slot) {
      ++methods;
      const std::string row = "| " + std::to_string(slot) + " | " + (*m)[1].str() + " | `" + (*m)[2].str() + "` |";
      EXPECT_NE(page.find(row), std::string::npos) << name << ": no row starting " << row;
    }
  }
  EXPECT_EQ(interfaces, 6);
  EXPECT_EQ(methods, 66);
}

}  // namespace
