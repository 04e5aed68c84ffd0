// Block storage for tree nodes: slots handed out in order, never reused, and
// the block freed once its last node has been destroyed. Handing out slots is
// not synchronised: like every change to a tree, building is one thread's
// work at a time; destroying nodes may happen on any thread.

#include "xml/NodePool.h"

#include <atomic>
#include <memory>
#include <new>

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#define ZUVO_HAVE_SINGLE_THREADED 1
#endif

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
    std::size_t used = 0;             ///< slots handed out; only the building thread reads it
    std::atomic<std::size_t> live{0}; ///< nodes constructed and not yet destroyed
};

// True while the process has never started a second thread. The C library
// keeps this flag where it can (it is what the standard library's own
// reference counts consult); elsewhere every count change is atomic.
inline bool singleThreaded() {
#ifdef ZUVO_HAVE_SINGLE_THREADED
    return __libc_single_threaded;
#else
    return false;
#endif
}

// Count changes. With one thread, a relaxed load and store: plain moves, no
// locked instruction. Otherwise the order a shared reference count needs:
// adding needs none (whoever adds already holds a node of the block); each
// drop releases what its thread did to its node, and the drop that reaches
// zero acquires all of the others before the block is freed.
inline void addNode(NodeBlock& block) {
    if (singleThreaded())
        block.live.store(block.live.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    else
        block.live.fetch_add(1, std::memory_order_relaxed);
}

/// True when the block's last node was dropped.
inline bool dropNode(NodeBlock& block) {
    if (singleThreaded()) {
        const std::size_t left = block.live.load(std::memory_order_relaxed) - 1;
        block.live.store(left, std::memory_order_relaxed);
        return left == 0;
    }
    // One read-modify-write both releases and acquires: a separate acquire
    // fence would do, but thread sanitizers do not follow fences.
    return block.live.fetch_sub(1, std::memory_order_acq_rel) == 1;
}

// Lives in the reference-count block of every pooled node: destroys the node
// in place, and frees the block with its last node.
struct NodeDeleter {
    NodeBlock* block;

    void operator()(TagNode* node) const {
        node->~TagNode();
        if (dropNode(*block))
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
    addNode(*block);
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
