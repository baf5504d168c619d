#include "tests/model/Operation.h"

namespace vex2::test::model {
namespace {

Text record(const Text& tag, const Text& body) {
  return tag + Big(body.size(), 4) + body;
}

Text list(const Text& tag, const std::vector<Text>& children, const Text& fixed = {}) {
  Text body = Big(children.size(), 2) + fixed;
  for (const Text& child : children) body += child;
  return record(tag, body);
}

Text text(Draw& draw, const Text& tag) {
  return record(tag, draw.Letters(12) + (draw.OneIn(3) ? Text(1, '\0') : Text()));
}

Text detectors(Draw& draw) {
  std::vector<Text> all;
  for (const char* name : {"one", "two"}) {
    all.push_back(list("DETX", {record("DETN", name), text(draw, "DYER"), text(draw, "COMT"),
                                record("COLR", draw.Bytes(3)), record("DASB", draw.Bytes(2))}));
  }
  Text bytes = list("DETL", all);
  // One in four lists declares too little, because such documents exist.
  if (draw.OneIn(4)) bytes.replace(4, 4, Big(2, 4));
  return bytes;
}

Text cells(Draw& draw) {
  const Text detector = list("DETT", {record("DNAM", "one"), record("QANT", draw.Bytes(4)),
                                      record("DUSE", draw.Bytes(1))});
  return list("CELS", {list("CELL", {text(draw, "NAME"), detector}, draw.Bytes(5)),
                       list("CELL", {text(draw, "DESC")}, draw.Bytes(5))});
}

Text spectra(Draw& draw, const Text& tag) {
  const bool isDyes = tag == "PDYE";
  const int count = draw.Below(3);
  Text body = draw.Bytes(8) + Big(static_cast<std::uint64_t>(count), 2) + draw.Bytes(62);
  for (int i = 0; i < count; ++i) {
    body +=
        draw.Bytes(8) + Big(3, 1) + "FAM" + draw.Bytes(isDyes ? 6 : 0) + Big(2, 1) + draw.Bytes(8);
  }
  return record(tag, body);
}

Text block(Draw& draw, const Text& tag) {
  const int wells = draw.OneIn(6) ? 3 : 2;
  Text body = Big(2, 2) + Big(12, 2) + draw.Bytes(12) + Big(static_cast<std::uint64_t>(wells), 2);
  for (int well = 1; well <= wells; ++well) body += Big(static_cast<std::uint64_t>(well), 2);
  return record(tag, body + draw.Bytes(80 * wells * draw.Below(4)));
}

Text settings(Draw& draw) {
  std::vector<Text> children = {record("VERS", draw.Bytes(4)), text(draw, "COMM"),
                                record("PRER", draw.Bytes(1)), text(draw, "LOGT")};
  if (draw.OneIn(3)) children.push_back(record("Wxyz", draw.Bytes(draw.Below(5))));
  return list("GLBL", children);
}

Text drawRecord(Draw& draw) {
  switch (draw.Below(14)) {
    case 0:
      return settings(draw);
    case 1:
      return detectors(draw);
    case 2:
      return cells(draw);
    case 3:
      return list("CALI", {spectra(draw, "PDYE"), spectra(draw, "BKGD")});
    case 4:
      return spectra(draw, "PDYE");
    case 5:
      return spectra(draw, "BKGD");
    case 6:
      return list("RqDy", {text(draw, "aDye"), record("aDye", "FAM")});
    case 7:
      return record("TPro", draw.Bytes(draw.Below(20)));
    case 8:
      return text(draw, "CALR");
    case 9:
      return record("Conf", draw.Bytes(4));
    case 10:
      return record("Wxyz", draw.Bytes(draw.Below(20)));
    case 11:
      return record("MDPW", draw.Bytes(2));
    case 12:
      return block(draw, draw.Of<Text>({"REPr", "REPn", "REPt"}));
    default:
      return record("EOF ", draw.Bytes(4));
  }
}

}  // namespace

Text DrawDocument(Draw& draw) {
  if (draw.OneIn(12))
    return draw.Of<Text>({"", "Vex", "no document at all", Text("Vex2") + Text(60, 'x')});
  Text bytes = Manager::NewHeader();
  bytes.resize(1024);
  if (draw.OneIn(6)) bytes.replace(8, 4, "RQSt");
  for (int left = draw.Below(7); left > 0; --left) bytes += drawRecord(draw);
  if (draw.OneIn(2)) {
    // The header's offset of the block: its end, as a save stores it; its start, as operations that
    // change a file in place store it; or 0.
    const std::size_t start = bytes.size();
    bytes += block(draw, "RAWa");
    const int how = draw.Below(5);
    if (how > 0) bytes.replace(68, 4, Big(how == 1 ? bytes.size() : start, 4));
    if (draw.OneIn(4)) bytes += Text(static_cast<std::size_t>(draw.Below(200)), '\xA5');
  }
  if (draw.OneIn(6) && bytes.size() > 1024) {
    bytes.resize(1024 +
                 static_cast<std::size_t>(draw.Below(static_cast<int>(bytes.size()) - 1024)));
  }
  return bytes;
}

}  // namespace vex2::test::model
