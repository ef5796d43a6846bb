#include "simulator/Profile.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

#include "simulator/PrinterState.h"
#include "text/Quoted.h"

namespace quordalvane::simulator {
namespace {

constexpr std::size_t longestFile = std::size_t{64} * 1024;

struct BuiltIn {
  std::string_view name;
  std::string_view text;
};

constexpr BuiltIn builtIn[] = {
    {"both", R"(# Line mode and ESC/POS at once, and every proof.
lineMode=true
proofs=block+process-id+in-order
lacks=none
codePages=common
multiByte=shift-jis
utf8=false
paper=80
modelName=Virtual
typeId=2
)"},
    {"escpos-80", R"(# A common ESC/POS printer for 80 mm paper.
lineMode=false
proofs=process-id+in-order
lacks=none
codePages=common
multiByte=none
utf8=false
paper=80
modelName=Virtual-80
typeId=2
)"},
    {"escpos-80-japan", R"(# A common ESC/POS printer with Japanese characters.
lineMode=false
proofs=process-id+in-order
lacks=none
codePages=common
multiByte=shift-jis
utf8=false
paper=80
modelName=Virtual-80
typeId=3
)"},
    {"escpos-80-china", R"(# A common ESC/POS printer with simplified Chinese characters.
lineMode=false
proofs=process-id+in-order
lacks=none
codePages=common
multiByte=gb18030
utf8=false
paper=80
modelName=Virtual-80
typeId=3
)"},
    {"escpos-80-taiwan", R"(# A common ESC/POS printer with traditional Chinese characters.
lineMode=false
proofs=process-id+in-order
lacks=none
codePages=common
multiByte=big5
utf8=false
paper=80
modelName=Virtual-80
typeId=3
)"},
    {"escpos-80-korea", R"(# A common ESC/POS printer with Korean characters.
lineMode=false
proofs=process-id+in-order
lacks=none
codePages=common
multiByte=euc-kr
utf8=false
paper=80
modelName=Virtual-80
typeId=3
)"},
    {"escpos-58",
     R"(# A small ESC/POS printer for 58 mm paper that answers in order and knows no process ID.
lineMode=false
proofs=in-order
lacks=none
codePages=small
multiByte=none
utf8=false
paper=58
modelName=Virtual-58
typeId=0
)"},
    {"silent-58", R"(# A small ESC/POS printer that confirms nothing and has no page mode.
lineMode=false
proofs=none
lacks=1b4c+1b53+1b54+1b57+1d24+1d5c
codePages=small
multiByte=none
utf8=false
paper=58
modelName=Virtual-58S
typeId=0
)"},
};

std::string everyName() {
  std::string names;
  for (const BuiltIn& profile : builtIn) {
    names.append(names.empty() ? "" : ", ").append(profile.name);
  }
  return names;
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string text(longestFile + 1, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(std::max<std::streamsize>(file.gcount(), 0)));
  if (file.bad() || (!file.is_open()) || text.size() > longestFile) {
    throw std::invalid_argument("profile: the file " + inQuotes(path) +
                                " cannot be read, or is longer than 64 KiB");
  }
  return text;
}

std::string textOf(std::string_view name) {
  for (const BuiltIn& profile : builtIn) {
    if (profile.name == name) {
      return std::string(profile.text);
    }
  }
  if (name.find('/') == std::string_view::npos) {
    throw std::invalid_argument("the key \"profile\" takes " + everyName() +
                                ", or the path of a file, such as ./till.profile, not " +
                                inQuotes(name) + "; a path must contain a slash");
  }
  return readFile(std::string(name));
}

void applyLine(std::string_view line, PrinterState& state) {
  if (line.empty() || line.front() == '#') {
    return;
  }
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos || line.substr(0, equals) == "profile") {
    throw std::invalid_argument("takes KEY=VALUE of a printer setting, not " + inQuotes(line));
  }
  state.set(line.substr(0, equals), line.substr(equals + 1));
}

}  // namespace

void applyProfile(std::string_view name, PrinterState& state) {
  const std::string text = textOf(name);
  PrinterState changed = state;
  std::size_t number = 1;
  for (std::size_t begin = 0; begin < text.size(); ++number) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    try {
      applyLine(std::string_view(text).substr(begin, end - begin), changed);
    } catch (const std::invalid_argument& error) {
      throw std::invalid_argument("profile " + inQuotes(name) + ", line " + std::to_string(number) +
                                  ": " + error.what());
    }
    begin = end + 1;
  }
  changed.profile = name;
  state = changed;
}

std::vector<std::string_view> profileNames() {
  std::vector<std::string_view> names;
  for (const BuiltIn& profile : builtIn) {
    names.push_back(profile.name);
  }
  return names;
}

}  // namespace quordalvane::simulator
