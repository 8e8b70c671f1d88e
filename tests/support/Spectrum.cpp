#include "tests/support/Spectrum.h"

#include <cmath>
#include <complex>
#include <numbers>

namespace Spectrum {

namespace {

constexpr int size = 8192;
/** Of a Kaiser window whose side lobes lie 160 dB below its main lobe, which is this many bins wide to either
 * side. */
constexpr double beta = 17.0;
constexpr int lobe = 8;

double Window(int i)
{
    const double x = 2.0 * i / (size - 1) - 1.0;
    return std::cyl_bessel_i(0.0, beta * std::sqrt(std::max(0.0, 1.0 - x * x))) / std::cyl_bessel_i(0.0, beta);
}

QList<double> WindowedMiddle(const QList<float>& signal)
{
    QList<double> middle(size);
    const qsizetype first = (signal.size() - size) / 2;
    for (int i = 0; i < size; ++i) {
        middle[i] = Window(i) * static_cast<double>(signal[first + i]);
    }
    return middle;
}

double PowerAt(int bin, const QList<double>& samples)
{
    const std::complex<double> step = std::polar(1.0, 2.0 * std::numbers::pi * bin / size);
    std::complex<double> turn = 1.0;
    std::complex<double> sum = 0.0;
    for (const double sample : samples) {
        sum += sample * turn;
        turn *= step;
    }
    return std::norm(sum);
}

} // namespace

double ResidueBelow(double limit, const QList<float>& signal, int rate, double frequency)
{
    const QList<double> samples = WindowedMiddle(signal);
    const double center = frequency * size / rate;
    double sine = 0.0;
    double residue = 0.0;
    for (int bin = 0; bin < limit * size / rate; ++bin) {
        (std::abs(bin - center) <= lobe ? sine : residue) += PowerAt(bin, samples);
    }
    return 10.0 * std::log10(sine / residue);
}

} // namespace Spectrum
