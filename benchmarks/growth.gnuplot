# Draws how the cost of an answer grows with its size. Usage: gnuplot -c growth.gnuplot COSTS PICTURE.svg
# Each line of COSTS has the name of a benchmark, a size and seconds. The dashed lines show linear and
# quadratic growth: a curve parallel to one of them grows like it.

set terminal svg size 900,560 font 'sans-serif,13' background '#ffffff'
set output ARG2
is(name, column) = strcol(1) eq name ? column : NaN
set title 'What one answer costs, by its size'
set xlabel 'size of the answer, bytes'
set ylabel 'processor time'
set logscale xy
set xrange [300:32e6]
set yrange [1e-7:1e2]
set xtics ('400' 400, '1 K' 2**10, '4 K' 2**12, '16 K' 2**14, '64 K' 2**16, '256 K' 2**18, \
           '1 M' 2**20, '4 M' 2**22, '16 M' 2**24)
set ytics ('100 ns' 1e-7, '1 µs' 1e-6, '10 µs' 1e-5, '100 µs' 1e-4, '1 ms' 1e-3, '10 ms' 1e-2, \
           '100 ms' 1e-1, '1 s' 1, '10 s' 10, '100 s' 100)
set grid
set key outside bottom center vertical maxrows 3 height 1
set style line 1 linewidth 2 pointtype 7 pointsize 0.5
plot ARG1 using 2:(is('growthReceiveBytes', $3)) with linespoints linestyle 1 linecolor '#7a3f9f' \
         title 'receiving, byte by byte', \
     ARG1 using 2:(is('growthReceive', $3)) with linespoints linestyle 1 linecolor '#c0561a' \
         title 'receiving, in reads of 511 bytes', \
     ARG1 using 2:(is('growthDeserialize', $3)) with linespoints linestyle 1 linecolor '#1f5f9f' \
         title 'parsing and reading the document', \
     x * 5e-10 with lines dashtype 2 linecolor '#999999' title 'in proportion to the size', \
     x**2 * 2e-15 with lines dashtype 4 linecolor '#999999' \
         title 'in proportion to its square'
