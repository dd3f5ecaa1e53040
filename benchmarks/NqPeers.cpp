#include "NqPeers.h"

#include "NqOwnPeer.h"
#ifdef NQ_HAVE_EIGEN
#include "NqComposedPeer.h"
#include "NqOwnKinematics.h"
#endif
#ifdef NQ_HAVE_KDL
#include "NqKdlSolverPeer.h"
#include "NqKdlTreePeer.h"
#endif
#ifdef NQ_HAVE_DART
#include "NqDartKinematics.h"
#endif

namespace {

using Peers = std::vector<std::unique_ptr<NqControlPeer>>;

#ifdef NQ_HAVE_EIGEN
using Method = NqEigenSolver::Method;

std::unique_ptr<NqEigenSolver> solver(const NqBenchmarkCase& benchmarkCase, Method method) {
    return NqEigenSolver::make(method, benchmarkCase.rows(), benchmarkCase.joints());
}

void addEigen(const NqBenchmarkCase& benchmarkCase, Peers& peers) {
    for (const Method method : {Method::PartialPivoting, Method::FullPivoting, Method::Orthogonal}) {
        peers.push_back(std::make_unique<NqComposedPeer>(
            benchmarkCase, std::make_unique<NqOwnKinematics>(benchmarkCase), solver(benchmarkCase, method)));
    }
}

/// The kinematics with the fastest of Eigen's solvers, and with sizes known at compile time where they are.
template <typename MakeKinematics>
void addComposed(const NqBenchmarkCase& benchmarkCase, MakeKinematics makeKinematics, Peers& peers) {
    peers.push_back(std::make_unique<NqComposedPeer>(benchmarkCase, makeKinematics(),
                                                     solver(benchmarkCase, Method::PartialPivoting)));
    if (auto fixed = NqEigenSolver::makeFixed(benchmarkCase.rows(), benchmarkCase.joints())) {
        peers.push_back(std::make_unique<NqComposedPeer>(benchmarkCase, makeKinematics(), std::move(fixed)));
    }
}
#endif

#ifdef NQ_HAVE_KDL
void addKdl(const NqBenchmarkCase& benchmarkCase, Peers& peers) {
    KDL::Tree tree;
    if (!NqKdlChain::readTree(benchmarkCase.urdf(), tree)) {
        return;
    }
    addComposed(
        benchmarkCase, [&] { return std::make_unique<NqKdlKinematics>(benchmarkCase, tree); }, peers);
    const bool hasFramesOnly = benchmarkCase.rows() == 6 * benchmarkCase.tasks().size();
    if (hasFramesOnly && benchmarkCase.tasks().size() == 1) {
        using Own = NqKdlSolverPeer::Method;
        for (const Own method : {Own::Pinv, Own::PinvNso, Own::Wdls}) {
            peers.push_back(std::make_unique<NqKdlSolverPeer>(benchmarkCase, tree, method));
        }
    } else if (hasFramesOnly) {
        peers.push_back(std::make_unique<NqKdlTreePeer>(benchmarkCase, tree));
    }
}
#endif

#ifdef NQ_HAVE_DART
void addDart(const NqBenchmarkCase& benchmarkCase, Peers& peers) {
    if (NqDartKinematics::make(benchmarkCase)) {
        addComposed(
            benchmarkCase, [&] { return NqDartKinematics::make(benchmarkCase); }, peers);
    }
}
#endif

} // namespace

Peers nqPeers(const NqBenchmarkCase& benchmarkCase) {
    Peers peers;
    peers.push_back(std::make_unique<NqOwnPeer>(benchmarkCase));
    if (benchmarkCase.tasks().size() > 1) {
        peers.push_back(std::make_unique<NqOwnPeer>(benchmarkCase, NqOwnPeer::NullSpace::Sparse));
    }
#ifdef NQ_HAVE_EIGEN
    addEigen(benchmarkCase, peers);
#endif
#ifdef NQ_HAVE_KDL
    addKdl(benchmarkCase, peers);
#endif
#ifdef NQ_HAVE_DART
    addDart(benchmarkCase, peers);
#endif
    return peers;
}
