# Reads every file of this folder with a reader of R that its writer had no part in, where there is one, and
# prints the figures of README.md.
suppressPackageStartupMessages({
  library(haven)
  library(foreign)
})

figures <- function(file, data) {
  data <- as.data.frame(data)
  numbers <- vapply(data, is.numeric, TRUE)
  sums <- vapply(data[numbers], function(x) sum(as.numeric(x), na.rm = TRUE), 0)
  cat(sprintf("%s: %d x %d, %d missing\n", file, nrow(data), ncol(data), sum(is.na(data))))
  cat(sprintf("  sum of %s = %.17g\n", names(sums), sums), sep = "")
}
spssFile <- function(file) {
  suppressWarnings(read.spss(file, to.data.frame = TRUE, use.value.labels = FALSE,
                             use.missings = TRUE, reencode = "UTF-8"))
}

for (file in c("survey.sav", "survey-packed.sav", "survey-v2.sav", "survey.por"))
  figures(paste(file, "(foreign)"), spssFile(file))
for (file in c("survey.sav", "survey-packed.sav", "survey.zsav", "names.sav", "nocases.sav"))
  figures(paste(file, "(haven)"), read_sav(file))
for (file in c("survey-118.dta", "survey-115.dta", "nocases.dta", "plain-108.dta", "plain-110.dta",
               "plain-114.dta"))
  figures(paste(file, "(haven)"), read_dta(file))
for (file in c("survey-115.dta", "plain-108.dta", "plain-110.dta", "plain-114.dta"))
  figures(paste(file, "(foreign)"), read.dta(file, convert.factors = FALSE, convert.dates = FALSE))
figures("survey-v5.xpt (foreign)", read.xport("survey-v5.xpt"))
figures("survey-v8.xpt (haven)", read_xpt("survey-v8.xpt"))
