// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/plane_vector.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

bool areNear(QkVector left, QkVector right) {
    const float scale = std::max({1.0F, vectorLength(left), vectorLength(right)});
    return vectorLength(QkMakeVectorFromPoints(left, right)) <= 4e-6F * scale;
}

TEST(PlaneVectors, KeepTheLawsOfThePlane) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> place(-100.0F, 100.0F);
    for (int i = 0; i < 2000; ++i) {
        const QkVector a{place(random), place(random)};
        const QkVector b{place(random), place(random)};
        EXPECT_TRUE(areNear(vectorSum(a, QkMakeVectorFromPoints(a, b)), b));
        EXPECT_TRUE(areNear(vectorSum(a, inverseVector(a)), {0.0F, 0.0F}));
        EXPECT_TRUE(areNear(scalarMultiplication(a, 2.0F), vectorSum(a, a)));
        EXPECT_NEAR(vectorScalarProduct(a, a), vectorLength(a) * vectorLength(a), 0.01F);
        EXPECT_NEAR(vectorLength(unitVector(a)), 1.0F, 1e-6F);
        EXPECT_TRUE(areNear(vectorWithAdjustedLength(a, -vectorLength(a)), inverseVector(a)));
        const float angle = vectorAngle(a);
        EXPECT_TRUE(areNear(unitVector(a), {std::cos(angle), std::sin(angle)}));
    }
    EXPECT_FLOAT_EQ(radiantsToDegree(vectorAngle({0.0F, 2.0F})), 90.0F);
    EXPECT_FLOAT_EQ(radiantsToDegree(vectorAngle({-1.0F, 0.0F})), 180.0F);
    EXPECT_FLOAT_EQ(vectorScalarProduct({1.0F, 2.0F}, {3.0F, -5.0F}), -7.0F);
}

TEST(PlaneVectors, HoldAtTheEdgesOfTheNumbers) {
    for (const QkVector null : {unitVector({0.0F, 0.0F}), vectorWithAdjustedLength({}, 5.0F)}) {
        EXPECT_TRUE(null.x == 0.0F && null.y == 0.0F && vectorAngle(null) == 0.0F);
        EXPECT_EQ(vectorAngle(inverseVector(null)), 0.0F);
    }
    const float least = std::numeric_limits<float>::denorm_min();
    const float most = std::numeric_limits<float>::max();
    EXPECT_FLOAT_EQ(vectorLength({3e30F, 4e30F}), 5e30F);  // whose squares are no floats
    EXPECT_FLOAT_EQ(unitVector({least, 0.0F}).x, 1.0F);
    EXPECT_FLOAT_EQ(unitVector({0.0F, -most}).y, -1.0F);
    EXPECT_TRUE(std::isinf(vectorLength({most, most})));
}

}  // namespace
}  // namespace veltra
