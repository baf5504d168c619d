#pragma once

#include <string>
#include <string_view>

#include "lab/exchange/Losses.h"
#include "lab/rdml/RdmlReaderContent.h"
#include "lab/rdml/XmlReader.h"

namespace vex2::lab::rdml {

/// Reads the XML of an RDML file of version 1.0 to 1.3, piece by piece. Elements may be in any
/// order, missing or empty. Lists what a document cannot hold. Errors name the line and the
/// element.
class RdmlReader final : public XmlHandler {
 public:
  /// `losses` must outlive the reader.
  RdmlReader(std::string name, Losses& losses);

  void Feed(std::string_view bytes) { xml_.Feed(bytes); }
  /// The content, after all pieces were fed.
  Content Finish();

  void Begin(const std::string& path, const std::vector<XmlAttribute>& attributes) override;
  void End(const std::string& path, std::string_view raw, bool isLeaf) override;

 private:
  friend struct RdmlElements;

  void beginRoot();
  std::optional<double> number(std::string_view text) const;
  std::optional<std::uint32_t> whole(std::string_view text) const;
  void endPoint(bool isMelting);
  void addPoint(Points& points, double cycle);
  void endReact();
  void listLost(const std::string& path, std::string_view text);
  ReadRun& run() { return content_.runs.back(); }
  ReadReact& react() { return run().reacts.back(); }
  ReadData& data() { return react().data.back(); }

  Losses& losses_;
  Content content_;
  // The state of the element that is being read.
  std::string id_;  ///< identifier of the enclosing element at the second level
  std::string experiment_;
  /// Attribute "id" or "targetId" of the innermost element, or its first attribute.
  std::string attribute_;
  std::string property_;
  std::string reference_;
  std::string quantity_;
  std::string quantityTarget_;
  std::string react_;
  std::optional<double> cycle_;
  std::optional<double> temperature_;
  std::optional<double> fluorescence_;
  XmlReader xml_;
};

}  // namespace vex2::lab::rdml
