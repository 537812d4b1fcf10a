# Writes em_errors.json: standard errors of means and covariances of incomplete normal samples from the
# observed information. Newton steps on the gradient of the likelihood go on until it is below 1e-10; the
# information is its numerical derivative. Those of standard deviations and correlations follow from the
# covariance matrix of the estimates by the delta method. lavaan's own answer, a saturated model from
# these estimates as start, is compared: `peer_lavaan` is the largest relative difference.
# `thinned` is a part of survey.csv with more values taken away, A5 where A1 is above 2 and A4 in every
# second case, and weights of 1, 2 and 3, which stand for so many equal cases. Run in this folder.
suppressMessages(library(lavaan))

# By patterns of missing values: weights, means, and products about the means.
patterns <- function(x, w) {
  rows <- split(seq_len(nrow(x)), apply(is.na(x), 1, paste, collapse = ""))
  groups <- lapply(rows, function(i) {
    o <- which(!is.na(x[i[1], ]))
    y <- x[i, o, drop = FALSE]
    m <- colSums(y * w[i]) / sum(w[i])
    list(o = o, n = sum(w[i]), m = m, s = crossprod(sweep(y, 2, m) * sqrt(w[i])))
  })
  groups[sapply(groups, function(g) length(g$o)) > 0]
}
matrix_of <- function(t, p) {
  s <- matrix(0, p, p)
  s[lower.tri(s, TRUE)] <- t[-(1:p)]
  s + t(s) - diag(diag(s))
}
loglik <- function(t, groups, p) {
  s <- matrix_of(t, p)
  if (min(eigen(s)$values) <= 0) return(-Inf)
  -sum(sapply(groups, function(g) {
    c <- chol(s[g$o, g$o, drop = FALSE])
    d <- g$m - t[g$o]
    g$n * sum(log(diag(c))) + sum(chol2inv(c) * (g$s + g$n * d %o% d)) / 2
  }))
}
gradient <- function(t, groups, p) {
  s <- matrix_of(t, p)
  mean <- numeric(p)
  cov <- matrix(0, p, p)
  for (g in groups) {
    w <- solve(s[g$o, g$o, drop = FALSE])
    d <- g$m - t[g$o]
    mean[g$o] <- mean[g$o] + g$n * w %*% d
    cov[g$o, g$o] <- cov[g$o, g$o] + (w %*% (g$s + g$n * d %o% d) %*% w - g$n * w) / 2
  }
  cov <- 2 * cov - diag(diag(cov))
  c(mean, cov[lower.tri(cov, TRUE)])
}
lavaans <- function(x, v, t) {
  pairs <- which(lower.tri(diag(length(v)), TRUE), arr.ind = TRUE)
  start <- sprintf("start(%.17g)*", t)
  model <- c(paste(v, "~", paste0(start[seq_along(v)], "1")),
             paste(v[pairs[, 2]], "~~", paste0(start[-seq_along(v)], v[pairs[, 1]])))
  f <- lavaan(paste(model, collapse = "\n"), as.data.frame(x), missing = "fiml", information = "observed", test = "none",
              baseline = FALSE, h1 = FALSE, control = list(rel.tol = 1e-15, x.tol = 1e-15, iter.max = 10000))
  parameterEstimates(f)$se
}
one <- function(d, w = rep(1, nrow(d))) {
  x <- as.matrix(d)
  p <- ncol(x)
  groups <- patterns(x, w)
  s <- cov(x, use = "pairwise")
  t <- c(colMeans(x, na.rm = TRUE), s[lower.tri(s, TRUE)])
  for (k in 1:100) {
    g <- gradient(t, groups, p)
    h <- numDeriv::jacobian(gradient, t, groups = groups, p = p)
    if (max(abs(g)) < 1e-10) break
    step <- solve(-(h + t(h)) / 2, g)
    before <- loglik(t, groups, p)
    while (loglik(t + step, groups, p) < before - 1e-9) step <- step / 2
    t <- t + step
  }
  stopifnot(max(abs(g)) < 1e-10)
  v <- solve(-(h + t(h)) / 2)
  se <- unname(sqrt(diag(v)))
  at <- matrix_of(c(rep(0, p), seq_len(p * (p + 1) / 2)), p) + p
  cor <- matrix(0, p, p)
  for (i in 2:p) for (j in 1:(i - 1)) {
    k <- c(at[i, j], at[i, i], at[j, j])
    e <- t[k]
    by <- c(1, -e[1] / (2 * e[2]), -e[1] / (2 * e[3])) / sqrt(e[2] * e[3])
    cor[i, j] <- cor[j, i] <- sqrt(c(by %*% v[k, k] %*% by))
  }
  cov <- matrix(se[at], p, p)
  list(se_mean = se[1:p], se_sd = diag(cov) / (2 * sqrt(t[diag(at)])), se_cov = cov, se_cor = cor,
       peer_lavaan = max(abs(lavaans(x[rep(seq_len(nrow(x)), w), ], colnames(x), t) / se - 1)))
}
b <- read.csv("survey.csv")[c("A1", "A2", "A3", "A4", "A5", "age")]
thinned <- b[c("A1", "A2", "A3", "A4", "A5")]
row <- seq_len(nrow(b))
thinned$A5[!is.na(thinned$A1) & thinned$A1 > 2] <- NA
thinned$A4[row %% 2 == 0] <- NA
out <- list(meta = list(R = R.version.string, lavaan = as.character(packageVersion("lavaan"))),
            airquality = one(read.csv("airquality.csv")), bfi = one(b), thinned = one(thinned, 1 + (row - 1) %% 3))
cat(jsonlite::toJSON(out, auto_unbox = TRUE, digits = NA, pretty = TRUE), "\n", file = "em_errors.json", sep = "")
