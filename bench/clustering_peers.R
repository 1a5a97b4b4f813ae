# Hierarchical clustering by R. A line "load FILE ROWS" reads a matrix of doubles, stored by columns; a line
# "METHOD ROWS" clusters its first rows and answers the sum of the heights.
input <- file("stdin", "r")
repeat {
  line <- readLines(input, 1)
  if (length(line) == 0) break
  words <- strsplit(line, " ")[[1]]
  if (words[1] == "load") {
    values <- readBin(words[2], "double", file.size(words[2]) / 8)
    data <- matrix(values, nrow = as.integer(words[3]))
    answer <- length(values)
  } else {
    rows <- data[seq_len(as.integer(words[2])), ]
    answer <- sum(hclust(dist(rows), method = words[1])$height)
  }
  cat(format(answer, digits = 17), "\n", sep = "")
  flush(stdout())
}
