#pragma once

#include <norvek/foundation/export.h>
#include <norvek/search/data_array_2d.h>
#include <norvek/search/registration_cost_info.h>
#include <norvek/transform/transform_matrix.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// Point sets joined through their best pairwise registrations, and one world transform for each.
///
/// A minimum spanning tree over the sets: each set but the root hangs on the set through whose
/// registration it was joined. With P the parent of a set,
///
///     world = P.world * relative        (after `UpdateWcsTransforms`)
///
/// where `relative` maps points of the set to the frame of its parent and `world` maps them to the
/// common frame. The root is treated like every set, with its old world transform in the place of
/// the parent's: it stays where it is as long as its relative transform is the identity.
///
/// Sets are numbered from 0 in the order of the arrays. A set that no finite cost connects with the
/// root is no part of the tree: it has no parent and no children, keeps its absolute transform as
/// its world transform, and is not touched by `UpdateWcsTransforms`.
///
/// Errors on the way from the root add up: the tree has the cheapest edges, not the shortest ways,
/// and it does not close loops. An empty tree (before `Build`) has no sets and no root.
class NORVEK_MATH_API MRegistered3DPointsTree
{
public:
    /// In the place of a parent or a root: there is none.
    static constexpr std::uint32_t kNoIndex = 0xFFFFFFFFU;

    /// One point set.
    struct Node
    {
        /// From this set to its parent.
        MMTransformMatrix relativeTransform;

        /// From this set to the common frame.
        MMTransformMatrix worldTransform;

        /// The sets that were joined through this one, in the order in which they were.
        std::vector<std::uint32_t> children;

        /// The set through which this one was joined; `kNoIndex` for the root and outside the tree.
        std::uint32_t parent = kNoIndex;

        /// The cost of the pair (parent, this); infinite where there is no parent.
        MRegistrationCostInfo cost;
    };

    /// Joins the sets by Prim's algorithm, starting with set 0, the root.
    ///
    /// Each step takes, of all pairs (i, j) with i in the tree and j outside, the one with the
    /// least `costs(i, j)`; of equal ones the lowest i, then the lowest j. A NaN cost comes after
    /// all numbers with as many outliers. Infinite costs never join. The edge stores `pairwise(i,
    /// j)`, from set j to set i, and `costs(i, j)` with set j. The two halves of a table that is
    /// not symmetric are different offers: `costs(j, i)` is for joining i through j.
    ///
    /// World transforms are the absolute ones then; `UpdateWcsTransforms` computes those that
    /// follow from the tree. Takes time and, beyond the sets themselves, reads of the tables that
    /// grow with the square of the number of sets.
    ///
    /// @param costs     the costs of all pairs, n x n; the diagonal is not read
    /// @param pairwise  the transforms of all pairs, n x n; only those of edges are read
    /// @param absolute  a transform to the common frame for each of the n sets
    /// @return false, and the tree unchanged, for fewer than two sets
    /// @throws std::out_of_range "invalid vector<T> subscript", the tree unchanged, when a table is
    ///         not n x n
    bool Build(const MDataArray2D<MRegistrationCostInfo>& costs,
               const MDataArray2D<MMTransformMatrix>& pairwise,
               const std::vector<MMTransformMatrix>& absolute);

    /// Adds a set by hand, for scans that come one by one: as the root of an empty tree, where
    /// `parent` must be `kNoIndex`, else as the last child of `parent`. The world transform is that
    /// of the parent times `relative`; that of a root is `relative`, whose own relative transform
    /// is the identity.
    ///
    /// @return the number of the new set
    /// @throws std::out_of_range "invalid vector<T> subscript", the tree unchanged, for any other
    ///         parent, and for one that is no part of the tree
    std::uint32_t AddNode(std::uint32_t parent, const MMTransformMatrix& relative,
                          const MRegistrationCostInfo& cost);

    /// Replaces the transform from set `index` to its parent, after a better registration;
    /// `UpdateWcsTransforms` carries it on. An index outside throws as for `GetNode`.
    void SetRelativeTransform(std::size_t index, const MMTransformMatrix& relative);

    /// Replaces the world transform of set `index`; for the root this moves the whole tree at the
    /// next `UpdateWcsTransforms`. An index outside throws as for `GetNode`.
    void SetWorldTransform(std::size_t index, const MMTransformMatrix& world);

    /// Computes the world transforms anew, from the root down. Does nothing on an empty tree. The
    /// depth of the tree costs no stack; the time is linear in the number of sets.
    ///
    /// The products carry inverses along as `MMTransformMatrix::PreMultiply` does: a world
    /// transform has the invertible flag of its relative transform.
    void UpdateWcsTransforms();

    /// The number of sets, those outside the tree included.
    [[nodiscard]] std::size_t GetNumNodes() const
    {
        return _nodes.size();
    }

    /// The number of the root; `kNoIndex` for an empty tree.
    [[nodiscard]] std::uint32_t GetRoot() const
    {
        return _root;
    }

    /// The set with this number. Valid until sets are added or the tree is built anew.
    ///
    /// @throws std::out_of_range "invalid vector<T> subscript" for a number outside
    [[nodiscard]] const Node& GetNode(std::size_t index) const;

    /// The set takes part: it is the root or has a parent. An index outside throws as for
    /// `GetNode`.
    [[nodiscard]] bool IsInTree(std::size_t index) const;

private:
    std::vector<Node> _nodes;
    std::uint32_t _root = kNoIndex;
};
