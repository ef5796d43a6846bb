// The commands for pictures and symbols.

#include <algorithm>
#include <utility>

#include "simulator/Typesetter.h"

namespace quordalvane::simulator {

// An image or a symbol begins at the position to which the job has moved; labels in page mode
// require this. After text in the same line, or with an alignment other than left, this position is
// ignored.
Place Typesetter::beginPicture() {
  const unsigned position = line_.empty() ? line_.position() : 0;
  line_.endIfBegun(target());
  Place place = line_.place();
  if (place.alignment == Alignment::Left) {
    const unsigned across = std::min(position, place.room - 1);
    place.left += across;
    place.room -= across;
  }
  return place;
}

void Typesetter::addImage(std::vector<Bitmap> layers) {
  Line line{{}, beginPicture(), 0};
  for (Bitmap& layer : layers) {
    if (layer.width > 0 && layer.height > 0) {
      line.items.push_back({0, std::move(layer)});
    }
  }
  if (!line.items.empty()) {
    target().add(std::move(line));
  }
}

void Typesetter::addSymbol(Symbol symbol) {
  symbol.place = beginPicture();
  target().add(std::move(symbol));
}

void Typesetter::raster(ByteView command) {
  if (command[2] != 0x30) {
    return paper_.noteSkipped(command);
  }
  addImage({rasterImage(command)});
}

void Typesetter::columnImage(ByteView command) {
  if (command.size() < 5) {
    return paper_.noteSkipped(command);
  }
  line_.add(simulator::columnImage(command));
}

void Typesetter::tallColumnImage(ByteView command) {
  addImage({simulator::tallColumnImage(command)});
}

void Typesetter::graphics(ByteView command) {
  switch (graphics_.apply(command)) {
    case GraphicsMemory::Outcome::Stored:
      return;
    case GraphicsMemory::Outcome::Print:
      return addImage(graphics_.image());
    case GraphicsMemory::Outcome::Unknown:
      return paper_.noteSkipped(command);
  }
}

void Typesetter::barcode(ByteView command) {
  auto barcode = symbols_.barcode(command);
  if (!barcode) {
    return paper_.noteSkipped(command);
  }
  addSymbol(*std::move(barcode));
}

void Typesetter::barcodeSetting(ByteView command) {
  symbols_.setBarcode(command);
}

void Typesetter::symbolAtOnce(ByteView command) {
  auto symbol = symbols_.symbolAtOnce(command);
  if (!symbol) {
    return paper_.noteSkipped(command);
  }
  addSymbol(*std::move(symbol));
}

void Typesetter::symbolKindAtOnce(ByteView command) {
  symbols_.setKindAtOnce(command);
}

void Typesetter::twoDimensional(ByteView command) {
  constexpr std::uint8_t graphicsForm = 0x4c;
  constexpr std::uint8_t symbolForm = 0x6b;
  if (command[2] == graphicsForm) {
    return graphics(command);
  }
  if (command[2] != symbolForm) {
    return paper_.noteSkipped(command);
  }
  switch (symbols_.applyTwoDimensional(command)) {
    case SymbolSetter::Outcome::Stored:
      return;
    case SymbolSetter::Outcome::Print:
      if (symbols_.symbol().isModel1) {
        record().noteReplaced("a QR code of model 1 is drawn as one of model 2");
      }
      return addSymbol(symbols_.symbol());
    case SymbolSetter::Outcome::Unknown:
      return paper_.noteSkipped(command);
  }
}

}  // namespace quordalvane::simulator
