# What R does with distributions: answers each line "NAME n" with the sum of twenty values.
input <- file("stdin", "r")
repeat {
  line <- readLines(input, 1)
  if (length(line) == 0) break
  words <- strsplit(line, " ")[[1]]
  n <- as.integer(words[2])
  sum <- 0
  for (k in 1:20) {
    sum <- sum + if (words[1] == "u") pwilcox(n^2 %/% 40 * k, n, n)
                 else .Call(stats:::C_pKolmogorov2x, k * 0.09 / sqrt(n), n)
  }
  cat(format(sum, digits = 17), "\n", sep = "")
  flush(stdout())
}
