// The spectrum of a signal by an autoregressive model, as Yule (1927) found the period of the
// sunspots:
//
//   x_t + a_1 x_(t-1) + ... + a_m x_(t-m) = e_t       e: white noise of variance s
//   T a = -(r_1 ... r_m)                              Yule-Walker; T symmetric Toeplitz of r
//   S(f) = s / |1 + sum a_k exp(-2 pi i f k)|^2       s = r_0 + sum a_k r_k
//
// with the autocorrelations r_k = sum x_t x_(t+k) / n of the signal less its mean. Durbin's
// recursion solves the equations in O(m^2). The order m is the one with the least information
// criterion of Akaike, n log s + 2 m.
//
//   autoregressive_spectrum signal.txt...    prints model and peaks, and draws the spectrum of the
//                                            last signal in spectrum.svg
#include <nequar_algebra/nequar_algebra.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <fstream>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr int kLargestOrder = 60;
constexpr int kFrequencies = 1000;  // of 0 ... 1/2, in samples

// The last number of each line; # starts a comment. The mean is taken away.
bool read(const char* path, std::vector<double>& signal) {
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line);
        double value = 0;
        bool found = false;
        while (words >> value) found = true;
        if (found) signal.push_back(value);
    }
    double sum = 0;
    for (double x : signal) sum += x;
    for (double& x : signal) x -= sum / static_cast<double>(signal.size());
    return signal.size() > kLargestOrder;
}

struct Model {
    CNqVector a;
    double noise = 0;      // s
    double criterion = 0;  // Akaike's
};

// No operation throws: it answers false, and its object keeps the trace of what went wrong.
bool failed(const CNqClass& object) {
    std::fprintf(stderr, "%s\n", object.gft_Get_Failure_Trace().c_str());
    return false;
}

bool fit(const std::vector<double>& signal, int order, Model& model) {
    const size_t n = signal.size();
    CNqVector r;
    if (!r.c_Create(order + 1, 0.0)) return failed(r);
    for (int k = 0; k <= order; ++k)
        for (size_t t = static_cast<size_t>(k); t < n; ++t)
            r[k] += signal[t] * signal[t - static_cast<size_t>(k)] / static_cast<double>(n);

    // It fails with "r[0]==0", say, for a signal that is constant.
    const CNqMatrix_Toeplitz_Symmetric toeplitz;
    if (!toeplitz.u_sywd_Solve_Yule_Walker_equation_by_Durbin(r, &model.a, nullptr))
        return failed(toeplitz);
    model.noise = r[0];
    for (int k = 1; k <= order; ++k) model.noise += model.a[k - 1] * r[k];
    model.criterion = static_cast<double>(n) * std::log(model.noise) + 2 * order;
    return true;
}

double frequency(int i) {
    return 0.5 * i / kFrequencies;
}

// |sum of values[t] exp(-2 pi i f t)|^2
template <class Values>
double power(const Values& values, int count, double f) {
    std::complex<double> sum = 0;
    for (int t = 0; t < count; ++t)
        sum +=
            std::polar(values[static_cast<typename std::size_t>(t)], -2 * std::numbers::pi * f * t);
    return std::norm(sum);
}

// The model's spectrum in red over the periodogram |sum x_t exp(-2 pi i f t)|^2 / n in grey, 8
// pixels a decibel.
bool draw(const char* path, const std::vector<double>& spectrum,
          const std::vector<double>& periodogram) {
    const double top = *std::max_element(spectrum.begin(), spectrum.end());
    std::ofstream out(path);
    out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"640\" height=\"340\" fill=\"none\">\n"
        << "<rect width=\"640\" height=\"340\" fill=\"#fff\"/>\n";
    for (const std::vector<double>* line : {&periodogram, &spectrum}) {
        out << "<polyline stroke=\"" << (line == &spectrum ? "#b22" : "#bbb")
            << "\" stroke-width=\"" << (line == &spectrum ? 2 : 1) << "\" points=\"";
        for (size_t i = 0; i < line->size(); i += 2) {
            const double decibels = 10 * std::log10((*line)[i] / top);
            out << 20 + static_cast<int>(i) * 600 / kFrequencies << ','
                << std::lround(std::min(300.0, 50 - 6 * decibels)) << ' ';
        }
        out << "\"/>\n";
    }
    out << "<path stroke=\"#000\" d=\"M20 300H620\"/>\n<g fill=\"#000\" font-size=\"12\">\n";
    for (int tenths = 0; tenths <= 5; ++tenths)
        out << "<text x=\"" << 12 + tenths * 120 << "\" y=\"320\">0." << tenths << "</text>\n";
    out << "</g>\n</svg>\n";
    out.close();
    return out.good();
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::fputs("autoregressive_spectrum signal.txt...   (a sample ends each line)\n", stderr);
        return 2;
    }
    for (int file = 1; file < count; ++file) {
        std::vector<double> signal;
        if (!read(arguments[file], signal)) {
            std::fprintf(stderr,
                         "%s: cannot be read as a signal of more than %d samples, one a line\n",
                         arguments[file], kLargestOrder);
            return 2;
        }
        Model model, candidate;
        for (int order = 1; order <= kLargestOrder; ++order) {
            if (!fit(signal, order, candidate)) return 1;
            if (order == 1 || candidate.criterion < model.criterion) model = candidate;
        }
        const int n = static_cast<int>(signal.size()), order = model.a.vs();
        const std::string path = arguments[file];
        std::printf("%s%s: %d samples, order %d, noise variance %.4f\n", file > 1 ? "\n" : "",
                    path.substr(path.find_last_of('/') + 1).c_str(), n, order, model.noise);
        for (int k = 0; k < order; ++k)
            std::printf("%s%9.4f", k > 0 && k % 8 == 0 ? "\n" : "", model.a[k]);

        std::vector<double> filter(1, 1.0), spectrum, periodogram;
        filter.insert(filter.end(), model.a.p(), model.a.p() + order);
        for (int i = 0; i <= kFrequencies; ++i) {
            spectrum.push_back(model.noise / power(filter, order + 1, frequency(i)));
            periodogram.push_back(power(signal, n, frequency(i)) / n);
        }
        // A peak stands above its neighbours, and above the noise tenfold.
        std::printf("\n%12s%12s%12s\n", "peak at", "period", "decibels");
        for (size_t i = 1; i + 1 < spectrum.size(); ++i) {
            if (spectrum[i] <= spectrum[i - 1] || spectrum[i] < spectrum[i + 1] ||
                spectrum[i] < 10 * model.noise)
                continue;
            const double f = frequency(static_cast<int>(i));
            std::printf("%12.4f%12.3f%12.2f\n", f, 1 / f, 10 * std::log10(spectrum[i]));
        }
        if (file == count - 1 && !draw("spectrum.svg", spectrum, periodogram)) {
            std::fputs("cannot write spectrum.svg\n", stderr);
            return 2;
        }
    }
    return 0;
}
