# Draws how often sound and pictures are in step, by the number of corrections. Usage: gnuplot -c
# avsync.gnuplot POINTS PICTURE.svg
# Each line of POINTS has a name, changes a minute and a percentage. The name "optimum" makes a curve.

set terminal svg size 900,560 font 'sans-serif,13' background '#ffffff'
set output ARG2
rule(column) = strcol(1) eq 'optimum' ? NaN : column
optimum(column) = strcol(1) eq 'optimum' ? column : NaN
set title 'Sound and pictures in step on recorded networks'
set xlabel 'changes a minute, of the margin or of the pictures'' delay'
set ylabel 'inside -15 to 45 ms (ATSC IS-191), % of the time'
set xrange [-1:60]
set yrange [0:100]
set grid
set key bottom right
plot ARG1 using 2:(optimum($3)) with lines linewidth 2 linecolor '#999999' \
         title 'the best that is possible for someone who knows the future', \
     ARG1 using 2:(rule($3)) with points pointtype 7 pointsize 0.9 linecolor '#c0561a' \
         title 'rules', \
     ARG1 using 2:(rule($3)):(sprintf('  %s', strcol(1))) with labels left noenhanced notitle
