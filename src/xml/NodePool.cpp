// Block storage for tree nodes: slots handed out in order, never reused, and
// the block freed with the last reference to any of its nodes.

#include "xml/NodePool.h"

#include <new>

namespace velmora {
namespace zuvolib {
namespace detail {
namespace {

// Room for one node, constructed in place later.
struct alignas(TagNode) Slot {
    unsigned char bytes[sizeof(TagNode)];
};

// Slots per block. Seven keep a block, with its count, under 1 KB: a size
// that common allocators serve from their fast per-thread caches, where a
// larger block would take their slow path and cost more than it saves.
constexpr std::size_t BLOCK_SLOTS = 7;

struct NodeBlock {
    NodeBlock() {} // leaves the slots uninitialised

    Slot slots[BLOCK_SLOTS];
    std::size_t used = 0;
};

// Lives in the reference-count block of every pooled node. Destroying the
// node leaves its slot to the block, which the deleter's own reference keeps
// until the reference-count block itself goes.
struct NodeDeleter {
    std::shared_ptr<NodeBlock> block;
    void operator()(TagNode* node) const { node->~TagNode(); }
};

std::shared_ptr<NodeBlock> blockFor(const std::tr1::shared_ptr<TagNode>& neighbour) {
    const NodeDeleter* const near = std::tr1::get_deleter<NodeDeleter>(neighbour);
    if (near && near->block->used < BLOCK_SLOTS)
        return near->block;
    return std::make_shared<NodeBlock>();
}

template <typename Name>
std::tr1::shared_ptr<TagNode> make(const Name& name,
                                   const std::tr1::shared_ptr<TagNode>& neighbour) {
    std::shared_ptr<NodeBlock> block = blockFor(neighbour);
    TagNode* const node = ::new (&block->slots[block->used]) TagNode(name);
    // Taken only once the node exists: a throwing constructor leaves the slot free.
    ++block->used;
    // Should the reference-count block fail to allocate, the deleter runs.
    return std::tr1::shared_ptr<TagNode>(node, NodeDeleter{std::move(block)});
}

} // namespace

std::tr1::shared_ptr<TagNode> makeNode(const std::string& name,
                                       const std::tr1::shared_ptr<TagNode>& neighbour) {
    return make(name, neighbour);
}

std::tr1::shared_ptr<TagNode> makeNode(const char* name,
                                       const std::tr1::shared_ptr<TagNode>& neighbour) {
    return make(name, neighbour);
}

} // namespace detail
} // namespace zuvolib
} // namespace velmora
