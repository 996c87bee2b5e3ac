# frames.gnuplot: draws what a frame costs; times and instructions are the outputs of scripts/bench --frames.
set terminal pngcairo size 1500,1500 font "DejaVu Sans,11"
set output "docs/frames.png"
set datafile separator "\t"
set multiplot layout 3,2 title "Cost of one frame: times with AVX-512 VNNI, instructions with NEON and dot product" font ",14"
set grid ytics lc rgb "#dddddd"
set key bottom right reverse Left
set border 3
set tics nomirror
set yrange [0:*]
array color[3] = ["#1b6ca8", "#d1711f", "#3d8b40"]
array filter[3] = ["no filter", "median", "Gaussian"]
array file[2] = [times, instructions]
array unit[2] = ["µs", "thousand instructions"]

smaller(a, b) = a < b ? a : b
larger(a, b) = a > b ? a : b
# Of the five contents.
low(a, b, c, d, e) = smaller(smaller(smaller(a, b), smaller(c, d)), e)
high(a, b, c, d, e) = larger(larger(larger(a, b), larger(c, d)), e)

set xtics rotate by -45
set xrange [-1:17]
set title "By frame width and zoom, region 220 × 140, 240 blocks of 10; bars span all contents"
do for [p = 1:2] {
  set ylabel unit[p]
  plot for [f = 1:3] file[p] index 0 every ::(17 * f - 17)::(17 * f - 1) using ($0 + 0.2 * (f - 2)):($4 / 1000):(low($4, $5, $6, $7, $8) / 1000):(high($4, $5, $6, $7, $8) / 1000) with yerrorbars lw 2 pt 7 ps 0.6 lc rgb color[f] title filter[f], \
    file[p] index 0 every ::0::16 using 0:(0):xtic(sprintf("%d, %d", $1, $2)) with points ps 0 notitle
}

set xrange [0:*]
set xtics norotate autofreq
set key top left
set title "Blocks of 10, the region growing with them"
set xlabel "blocks"
do for [p = 1:2] {
  set ylabel unit[p]
  plot for [f = 1:3] file[p] index 1 using 4:(column(5 + f) / 1000) with linespoints lw 2 pt 7 ps 0.8 lc rgb color[f] title filter[f]
}

# The last line of this group is beyond the fast forms, and the scale.
set title "240 blocks of 10 to 32 pixels, the region growing with them"
set xlabel "region, thousand pixels"
do for [p = 1:2] {
  set ylabel unit[p]
  plot for [f = 1:3] file[p] index 3 every ::0::11 using ($5 / 1000):(column(5 + f) / 1000) with linespoints lw 2 pt 7 ps 0.8 lc rgb color[f] title filter[f]
}
unset multiplot
