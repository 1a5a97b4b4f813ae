# What R does with a table: answers each line "read FILE" with the sum of the first column.
input <- file("stdin", "r")
repeat {
  line <- readLines(input, 1)
  if (length(line) == 0) break
  table <- read.csv(sub("read ", "", line))
  cat(format(sum(table[[1]]), digits = 17), "\n", sep = "")
  flush(stdout())
}
