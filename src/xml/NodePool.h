// Block storage for the nodes of a tree under construction.
//
// A builder makes dozens of nodes per document, each of which would be a heap
// block of its own next to its reference-count block. Instead, nodes are
// constructed in blocks of slots, and each node's shared reference carries a
// deleter that destroys the node in place. A block is freed with the last of
// its nodes, so a tree, or any part of it kept by the caller, lives exactly
// as long as it would with one heap block per node.
#ifndef ZUVOLIB_SRC_XML_NODEPOOL_H
#define ZUVOLIB_SRC_XML_NODEPOOL_H

#include "zuvolib/Tr1Memory.h"
#include "zuvolib/xml/TagNode.h"

#include <cstddef>
#include <memory>
#include <string>

namespace velmora {
namespace zuvolib {
namespace detail {

/// A new node named `name`, placed in the block that holds `neighbour` when
/// that block has a free slot, otherwise in a new block. `neighbour` may be
/// empty or a node made elsewhere.
/// Throws std::bad_alloc; nothing is leaked when it does.
std::tr1::shared_ptr<TagNode> makeNode(const std::string& name,
                                       const std::tr1::shared_ptr<TagNode>& neighbour);
std::tr1::shared_ptr<TagNode> makeNode(const char* name,
                                       const std::tr1::shared_ptr<TagNode>& neighbour);

} // namespace detail
} // namespace zuvolib
} // namespace velmora

#endif
