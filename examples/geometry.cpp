// How far the sepals of each species of iris spread, and which flowers lie in the region of
// another. With the name of a picture, such as irises.png, it draws them by gnuplot.
#include <zel/analysis/Zel_math2.h>

#include <cstdio>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Points = std::vector<zel::TPointDouble>;

/// Length and width of the sepals in cm, by species.
std::map<std::string, Points> sepals(const std::string& name) {
  std::map<std::string, Points> irises;
  std::ifstream file(name);
  std::string line, species;
  std::getline(file, line);  // the names of the columns
  while (std::getline(file, line)) {
    std::istringstream cells(line);
    std::string petalLength, petalWidth;
    zel::TPointDouble sepal;
    char comma = 0;
    cells >> sepal.X >> comma >> sepal.Y >> comma;
    std::getline(cells, petalLength, ',');
    std::getline(cells, petalWidth, ',');
    if (cells >> species) irises[species].push_back(sepal);
  }
  return irises;
}

/// A block of data for gnuplot.
void send(std::FILE* gnuplot, const char* name, const Points& points) {
  std::fprintf(gnuplot, "$%s << EOD\n", name);
  for (const auto& p : points) std::fprintf(gnuplot, "%.17g %.17g\n", p.X, p.Y);
  std::fprintf(gnuplot, "EOD\n");
}

bool draw(const std::string& picture, Points hull, const Points& inside, const Points& outside) {
  std::FILE* gnuplot = popen("gnuplot", "w");
  if (gnuplot == nullptr) return false;
  hull.push_back(hull.front());
  send(gnuplot, "hull", hull);
  send(gnuplot, "inside", inside);
  send(gnuplot, "outside", outside);
  std::fprintf(gnuplot, "set output '%s'\n", picture.c_str());
  std::fputs(
      "set terminal pngcairo size 1600,1000 font 'DejaVu Sans,10' fontscale 2 linewidth 2.5\n"
      "set xlabel 'sepal length in cm'; set ylabel 'sepal width in cm'\n"
      "set border 3; set tics nomirror out; set key left top Left reverse\n"
      "plot $hull with filledcurves fc rgb '#dbe7f1' title 'hull of versicolor', "
      "$hull with linespoints lc rgb '#2f6496' pt 7 ps 1.5 notitle, "
      "$outside with points lc rgb '#777777' pt 6 ps 1.5 title 'others, outside', "
      "$inside with points lc rgb '#b3262e' pt 7 ps 1.5 title 'others, inside'\n",
      gnuplot);
  return pclose(gnuplot) == 0;
}

}  // namespace

int main(int argc, char** argv) {
  const auto irises = sepals(argc > 2 ? argv[2] : "data/iris.csv");
  if (irises.size() != 3) {
    std::cerr << "cannot read the data\n";
    return 1;
  }
  std::cout << "species     flowers  corners  area/cm2  edge/cm  crossings\n"
            << std::fixed << std::setprecision(3);
  for (const auto& [species, points] : irises) {
    const Points hull = zel::Convex2DHull(points);
    int crossings = 0;
    const double area = zel::PolygonArea(hull, crossings);
    std::cout << std::left << std::setw(12) << species << std::right << std::setw(7)
              << points.size() << std::setw(9) << hull.size() << std::setw(10) << area
              << std::setw(9) << zel::PolygonLength(hull, true) << std::setw(11) << crossings
              << '\n';
  }

  // Flowers of the other species in the region of versicolor. A point on its border is not inside.
  const Points hull = zel::Convex2DHull(irises.at("versicolor"));
  Points inside, outside;
  for (const auto& [species, points] : irises) {
    if (species == "versicolor") continue;
    const std::size_t before = inside.size();
    for (const auto& p : points) {
      (zel::PointIsInsidePolygon(p.X, p.Y, hull) ? inside : outside).push_back(p);
    }
    std::cout << inside.size() - before << " of " << species << " inside\n";
  }
  const zel::TPointDouble flower{7.5, 2.4};
  std::cout << "(7.5, 2.4) is " << zel::DistanceToPolygon(flower, hull, true)
            << " cm away from it\n";
  if (argc > 1 && !draw(argv[1], hull, inside, outside)) {
    std::cerr << "gnuplot did not draw the picture\n";
    return 1;
  }
  return 0;
}
