// peers_eigen.cpp: the perceptron's hidden sums as Eigen's matrix-vector product, which orders them anew.
#include <Eigen/Dense>

#include "contestant.h"

namespace bench {

void AddEigenPeers(std::vector<Contestant>& peers) {
  // Dynamic sizes: a user's network comes from a file.
  const Eigen::Matrix<float, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor> weights =
      Eigen::MatrixXf::Random(16, 160);
  const Eigen::VectorXf features = Eigen::VectorXf::Random(160);
  Eigen::VectorXf sums(16);
  peers.push_back({"Classify_Feature_", "Eigen", nullptr,
                   Repeat([=]() mutable { sums.noalias() = weights * features; })});
}

}  // namespace bench
