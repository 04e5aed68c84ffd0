// Block storage for tree nodes: slots handed out in order, never reused, and
// the block freed once its last node has been destroyed. Handing out slots is
// not synchronised: like every change to a tree, building is one thread's
// work at a time; destroying nodes may happen on any thread.

#include "xml/NodePool.h"

#include <ext/atomicity.h>
#include <memory>
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
    std::size_t used = 0;  ///< slots handed out; only the building thread reads it
    _Atomic_word live = 0; ///< nodes constructed and not yet destroyed
};

// Lives in the reference-count block of every pooled node: destroys the node
// in place, and frees the block with its last node. The count is changed the
// way the shared references change theirs, with plain arithmetic while the
// process has a single thread and atomically otherwise.
struct NodeDeleter {
    NodeBlock* block;

    void operator()(TagNode* node) const {
        node->~TagNode();
        if (__gnu_cxx::__exchange_and_add_dispatch(&block->live, -1) == 1)
            std::unique_ptr<NodeBlock> last(block); // taken back, and freed here
    }
};

// The neighbour's block while it has room. A neighbour that is referenced
// keeps its block's count above zero, so the block cannot go meanwhile.
NodeBlock* blockWithRoom(const std::tr1::shared_ptr<TagNode>& neighbour) {
    const NodeDeleter* const near = std::tr1::get_deleter<NodeDeleter>(neighbour);
    if (near && near->block->used < BLOCK_SLOTS)
        return near->block;
    return nullptr;
}

template <typename Name>
std::tr1::shared_ptr<TagNode> make(const Name& name,
                                   const std::tr1::shared_ptr<TagNode>& neighbour) {
    std::unique_ptr<NodeBlock> fresh;
    NodeBlock* block = blockWithRoom(neighbour);
    if (!block) {
        fresh = std::make_unique<NodeBlock>();
        block = fresh.get();
    }
    // A throwing constructor leaves the slot free (and a fresh block to `fresh`).
    TagNode* const node = ::new (&block->slots[block->used]) TagNode(name);
    ++block->used;
    __gnu_cxx::__atomic_add_dispatch(&block->live, 1);
    fresh.release(); // owned by its nodes from here on
    // Should the reference-count block fail to allocate, the deleter runs.
    return std::tr1::shared_ptr<TagNode>(node, NodeDeleter{block});
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
