# The survey of make.sps as R's packages write it. Arguments: none; the working folder is this one.
suppressPackageStartupMessages({
  library(haven)
  library(foreign)
})

spss <- as.data.frame(read_sav("survey.sav"))
stopifnot(nrow(spss) == 6)

# Stata knows no ranges and no text codes that mean missing; missing values with a letter take their place.
survey <- data.frame(
  id = as.integer(spss$id),
  name = spss$name,
  city = spss$city,
  score = c(12.5, tagged_na("a"), tagged_na("z"), -0.25, 0, NA),
  height = as.numeric(spss$height),
  day = as.Date(spss$day),
  moment = as.POSIXct(spss$moment, tz = "UTC")
)
survey$group <- labelled(c(1, 2, tagged_na("n"), 1, 2, NA),
                         c(low = 1, high = 2, "not asked" = tagged_na("n")), label = "Group")
survey$answer <- labelled(c(1, 98, 99, -3, 2, 97),
                          c(yes = 1, no = 2, "überspringt" = 97, refused = 98, "don't know" = 99))
attr(survey$height, "label") <- "Körpergröße in cm"
attr(survey$day, "label") <- "Day of the visit"

write_dta(survey, "survey-118.dta", version = 14)
# Version 115 names no character set: readers take one of 8 bits. This writer puts UTF-8 into it all the same.
write_dta(survey, "utf8-115.dta", version = 12)
ascii <- survey
ascii$name <- c("Anna", "Bjorn", "Celik", "", "Eve", "Zoe")
ascii$city <- c("Zurich", "Lodz", "Beijing", "", "O'Neill, 'Co'", "Krakow")
attr(ascii$height, "label") <- "Height in cm"
ascii$answer <- labelled(as.numeric(survey$answer), c(yes = 1, no = 2, skips = 97, refused = 98))
write_dta(ascii, "survey-115.dta", version = 12)
write_dta(survey[0, ], "nocases.dta", version = 14)

# SAS transport: letters are capitals; names of eight characters in version 5.
plain <- survey
plain$score <- c(12.5, tagged_na("A"), tagged_na("Z"), -0.25, 0, NA)
plain$group <- c(1, 2, tagged_na("N"), 1, 2, NA)
plain$answer <- as.numeric(zap_labels(survey$answer))
write_xpt(plain, "survey-v5.xpt", version = 5, name = "SURVEY")
names(plain)[9] <- "averylongvariablename"
write_xpt(plain, "survey-v8.xpt", version = 8, name = "SURVEY")

# A writer that shares no code with haven: R's own, without letters and labels of other sets.
old <- data.frame(
  id = 1:6,
  score = c(12.5, NA, NA, -0.25, 0, NA),
  whole = c(1L, -32000L, 32740L, 100000L, NA, 0L),
  kind = factor(c("low", "high", "low", NA, "high", "low"), levels = c("low", "high")),
  text = c("Anna", "Bjorn", " ", "O'Neill", "a", "Zoe"),
  day = as.Date(c("2020-02-29", NA, "1970-01-01", "1960-01-01", "2099-12-31", "1899-12-31"))
)
write.dta(old, "plain-108.dta", version = 6)
write.dta(old, "plain-110.dta", version = 7)
write.dta(old, "plain-114.dta", version = 10)
