<%@ Component="Ostrakan.Class40" %><% InitFunction1 %><% InitFunction2 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>帐号设置</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
<script type="text/javascript">
function checkAdmin(form) {
  if (form.username.value == '') { alert('管理帐号不能空！'); form.username.focus(); return false; }
  if (form.password.value == '') { alert('管理密码不能空！'); form.password.focus(); return false; }
  if (form.password.value != form.password2.value) { alert('两次输入的密码不一致！'); form.password2.focus(); return false; }
  var removedAtSignIn = /[\x00-\x20#%\x27\x22()*+;<>\[\]]/;
  if (removedAtSignIn.test(form.username.value)) { alert('管理帐号不能含有空格、引号、括号及 # % * + ; < > [ ] 等符号，请重新输入！'); form.username.focus(); return false; }
  if (removedAtSignIn.test(form.password.value)) { alert('管理密码不能含有空格、引号、括号及 # % * + ; < > [ ] 等符号，请重新输入！'); form.password.focus(); return false; }
  return true;
}
</script>
</head>
<body class="content">
<h3>帐号设置</h3>
<form accept-charset="gb18030" name="admin" method="post" action="admin_ok.asp" onsubmit="return checkAdmin(this)">
<table class="form">
  <tr><th>管理帐号：</th><td><input type="text" name="username" id="username" maxlength="50" class="input" value="<% InitFunction3 %>"></td></tr>
  <tr><th>新 密 码：</th><td><input type="password" name="password" id="password" maxlength="50" class="input"></td></tr>
  <tr><th>确认密码：</th><td><input type="password" name="password2" id="password2" maxlength="50" class="input"></td></tr>
  <tr><th></th><td><input type="submit" value="修 改" class="button"></td></tr>
</table>
</form>
<p class="hint">帐号和密码不能含有空格、引号、括号及 # % * + ; &lt; &gt; [ ] 等符号（登录时无法输入），含有这些符号时不会保存。</p>
</body>
</html>
