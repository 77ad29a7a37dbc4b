#include "cost/update_feed.h"

#include "foundation/text.h"
#include "foundation/utf8.h"
#include "foundation/version.h"

#include <pugixml.hpp>

namespace fleetwise {

namespace {

constexpr std::string_view priceElement = "fleetwise:preise";
constexpr std::size_t maximumVersionBytes = 64;

bool isCharacterOfXml(char first) {
    return static_cast<unsigned char>(first) >= 0x20 || first == '\t' || first == '\n' ||
           first == '\r';
}

bool isTextOfXml(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t length = utf8SequenceLength(bytes);
        if (length == 0 || !isCharacterOfXml(bytes.front())) return false;
        bytes.remove_prefix(length);
    }
    return true;
}

bool hasDoctype(const pugi::xml_document& document) {
    for (const pugi::xml_node node : document) {
        if (node.type() == pugi::node_doctype) return true;
    }
    return false;
}

bool declaresOtherEncoding(const pugi::xml_document& document) {
    for (const pugi::xml_node node : document) {
        if (node.type() != pugi::node_declaration) continue;
        const auto attribute = node.attribute("encoding");
        const std::string encoding = asciiLowercased(attribute.value());
        if (attribute && encoding != "utf-8" && encoding != "us-ascii") return true;
    }
    return false;
}

/// The next node in the order of the document. A feed may be nested deeper than the stack is.
pugi::xml_node following(pugi::xml_node node) {
    if (const auto child = node.first_child()) return child;
    while (node && !node.next_sibling())
        node = node.parent();
    return node.next_sibling();
}

/// The texts that stand directly in the element, which CDATA may divide.
std::string textOf(pugi::xml_node element) {
    std::string text;
    for (const pugi::xml_node child : element) {
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) {
            text += child.value();
        }
    }
    return text;
}

std::string_view localName(std::string_view name) {
    return name.substr(name.rfind(':') + 1);
}

/// Of the item's enclosures and children.
std::optional<std::string> textNamed(std::string_view name, pugi::xml_node item) {
    for (const pugi::xml_node child : item) {
        if (localName(child.name()) == name) return textOf(child);
        if (std::string_view(child.name()) != "enclosure") continue;
        for (const pugi::xml_attribute attribute : child.attributes()) {
            if (localName(attribute.name()) == name) return attribute.value();
        }
    }
    return {};
}

std::string versionText(pugi::xml_node item) {
    auto text = textNamed("shortVersionString", item);
    if (!text) text = textNamed("version", item);
    return std::string(trimmed(text.value_or("")));
}

/// Adds what the element tells to the feed.
class FeedBuilder {
public:
    void add(pugi::xml_node element) {
        const std::string_view name = element.name();
        if (name == priceElement) feed.priceBlocks.push_back(textOf(element));
        if (name == "item") addVersion(versionText(element));
    }
    UpdateFeed finish() && { return std::move(feed); }

private:
    void addVersion(std::string text) {
        const auto version = Version::parse(text);
        if (!version || text.size() > maximumVersionBytes) return;
        if (newest && *version <= *newest) return;
        newest = version;
        feed.newestVersion = std::move(text);
    }

    UpdateFeed feed;
    std::optional<Version> newest;
};

}  // namespace

tl::expected<UpdateFeed, UpdateFeedFault> readUpdateFeed(std::string_view bytes) {
    if (bytes.size() > maximumUpdateFeedBytes) return tl::unexpected(UpdateFeedFault::tooLarge);
    if (!isTextOfXml(bytes)) return tl::unexpected(UpdateFeedFault::notUtf8);
    pugi::xml_document document;
    const auto outcome = document.load_buffer(
        bytes.data(), bytes.size(),
        pugi::parse_default | pugi::parse_doctype | pugi::parse_declaration, pugi::encoding_utf8);
    if (hasDoctype(document)) return tl::unexpected(UpdateFeedFault::doctype);
    if (!outcome) return tl::unexpected(UpdateFeedFault::notWellFormed);
    if (declaresOtherEncoding(document)) return tl::unexpected(UpdateFeedFault::notUtf8);
    FeedBuilder builder;
    for (auto node = document.first_child(); node; node = following(node))
        builder.add(node);
    return std::move(builder).finish();
}

}  // namespace fleetwise
