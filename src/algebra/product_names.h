// A product has two names: that of its set form, and that of the accumulating form, whose checks
// and reports it shares.
#pragma once

namespace nequar {

struct ProductName {
    const char* set;
    const char* accumulate;
    const char* mismatch;  // the detail when the sizes do not fit
};

inline constexpr ProductName kMatrixMatrix{"mmm_Multiply_Matrix_Matrix",
                                           "mmma_Multiply_Matrix_Matrix_and_Accumulate", "1"};
inline constexpr ProductName kMatrixTmatrix{"mmt_Multiply_Matrix_Tmatrix",
                                            "mmta_Multiply_Matrix_Tmatrix_and_Accumulate", "2"};
inline constexpr ProductName kTmatrixMatrix{"mtm_Multiply_Tmatrix_Matrix",
                                            "mtma_Multiply_Tmatrix_Matrix_and_Accumulate", "2"};
inline constexpr ProductName kMatrixVector{"mmv_Multiply_Matrix_Vector",
                                           "mmva_Multiply_Matrix_Vector_and_Accumulate", "2"};
inline constexpr ProductName kVectorMatrix{"mvm_Multiply_Vector_Matrix",
                                           "mvma_Multiply_Vector_Matrix_and_Accumulate", "2"};
inline constexpr ProductName kVectorTmatrix{"mvt_Multiply_Vector_Tmatrix",
                                            "mvta_Multiply_Vector_Tmatrix_and_Accumulate", "2"};
inline constexpr ProductName kVectorVector{"mvv_Multiply_Vector_Vector",
                                           "mvva_Multiply_Vector_Vector_and_Accumulate", "1"};
inline constexpr ProductName kVectorMatrixVector{
    "mvmv_Multiply_Vector_Matrix_Vector", "mvmva_Multiply_Vector_Matrix_Vector_and_Accumulate",
    "1"};
inline constexpr ProductName kMatrixDmatrix{"mmd_Multiply_Matrix_Dmatrix",
                                            "mmda_Multiply_Matrix_Dmatrix_and_Accumulate", "1"};
inline constexpr ProductName kVectorDmatrix{"mvd_Multiply_Vector_Dmatrix",
                                            "mvda_Multiply_Vector_Dmatrix_and_Accumulate", "2"};
inline constexpr ProductName kVectorDmatrixVector{
    "mvdv_Multiply_Vector_Dmatrix_Vector", "mvdva_Multiply_Vector_Dmatrix_Vector_and_Accumulate",
    "1"};

}  // namespace nequar
