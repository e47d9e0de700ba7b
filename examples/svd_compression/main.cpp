// A picture of few numbers: the best approximation of given rank k is the one by the leading
// singular values,
//
//   A = U S V^T,    A_k = sum of s_i u_i v_i^T, i < k,    |A - A_k|^2 = sum of s_i^2, i >= k
//
// (Eckart and Young 1936; |.| the Frobenius norm). It takes k (height + width + 1) numbers instead
// of height x width. What is lost is said in decibels, the peak signal-to-noise ratio
//
//   PSNR = 10 log10(255^2 height width / |A - A_k|^2)
//
// and found twice here: from the pictures, and from the singular values that were left out.
//
//   svd_compression picture.pgm rank...        writes rank_K.pgm for each
#include <nequar_algebra/nequar_algebra.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

// No operation throws: it answers false, and its object keeps the trace of what went wrong.
int failed(const CNqClass& object) {
    std::fprintf(stderr, "%s\n", object.gft_Get_Failure_Trace().c_str());
    return 1;
}

// Plain grey pictures: "P2 width height 255" and the levels row by row.
bool read(const char* path, CNqMatrix& picture) {
    std::ifstream in(path);
    std::string kind;
    int width = 0, height = 0, largest = 0;
    if (!(in >> kind >> width >> height >> largest) || kind != "P2" || width < 1 || height < 1 ||
        largest != 255 || !picture.c_Create(height, width))
        return false;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (!(in >> picture[y][x])) return false;
    return true;
}

bool write(const std::string& path, const CNqMatrix& picture) {
    std::ofstream out(path);
    out << "P2\n" << picture.mw() << ' ' << picture.mh() << "\n255\n";
    for (int y = 0; y < picture.mh(); ++y)
        for (int x = 0; x < picture.mw(); ++x)
            out << std::lround(std::clamp(picture[y][x], 0.0, 255.0))
                << (x + 1 == picture.mw() ? '\n' : ' ');
    out.close();
    return out.good();
}

}  // namespace

int main(int count, char** arguments) {
    CNqMatrix picture;
    if (count < 3) {
        std::fputs("svd_compression picture.pgm rank...\n", stderr);
        return 2;
    }
    if (!read(arguments[1], picture)) {
        std::fprintf(stderr, "%s: cannot be read as a plain grey picture (P2)\n", arguments[1]);
        return 2;
    }
    // The decomposition wants no fewer rows than columns: a wide picture is laid on its side.
    const bool wide = picture.mw() > picture.mh();
    const LCNqAlgebra_for_Matrix algebra;
    if (wide) algebra.tpm_Transpose_Matrix(&picture, &picture);
    const int height = picture.mh(), width = picture.mw();

    // The form without a limit stops after 100 steps, enough for some 50 columns. Fewer steps than
    // the limit mean that all singular values have converged.
    const LCNqUtility_for_Matrix_Factorization factorization;
    CNqMatrix U, V;
    CNqMatrix_Diagonal S;
    int steps = 0;
    const int limit = 30 * width;
    if (!factorization.dsvb_Decompose_to_find_Singular_Values_via_Bidiagonalization(
            &picture, &U, &S, &V, limit, steps))
        return failed(factorization);
    if (steps >= limit) {
        std::fputs("the singular values have not converged\n", stderr);
        return 1;
    }

    const double pixels = static_cast<double>(height) * width;
    std::printf("%s picture of %d x %d pixels, largest singular value %.4f\n",
                wide ? "turned" : "upright", width, height, S[0]);
    std::printf("%6s%10s%12s%16s%16s\n", "rank", "numbers", "of all, %", "PSNR, dB", "by s_i, dB");
    for (int k = 2; k < count; ++k) {
        const int rank = std::atoi(arguments[k]);
        if (rank < 1 || rank > width) {
            std::fprintf(stderr, "a rank is a number from 1 to %d: %s\n", width, arguments[k]);
            return 2;
        }
        // A tolerance of 0 keeps every singular value that is not zero: those left out are set so.
        CNqMatrix_Diagonal leading = S;
        double lost_by_values = 0, lost = 0;
        for (int i = rank; i < width; ++i) {
            lost_by_values += S[i] * S[i];
            leading[i] = 0;
        }
        CNqMatrix approximation;
        if (!factorization.rsv_Reconstruct_matrix_via_Singular_Value_decomposition(
                &U, &leading, &V, 0.0, true, &approximation))
            return failed(factorization);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                lost += std::pow(picture[y][x] - approximation[y][x], 2);

        const double peak = 255.0 * 255.0 * pixels;
        const int numbers = rank * (height + width + 1);
        std::printf("%6d%10d%12.1f%16.6f%16.6f\n", rank, numbers, 100 * numbers / pixels,
                    10 * std::log10(peak / lost), 10 * std::log10(peak / lost_by_values));
        if (wide) algebra.tpm_Transpose_Matrix(&approximation, &approximation);
        if (!write("rank_" + std::to_string(rank) + ".pgm", approximation)) {
            std::fprintf(stderr, "cannot write rank_%d.pgm\n", rank);
            return 2;
        }
    }
    return 0;
}
