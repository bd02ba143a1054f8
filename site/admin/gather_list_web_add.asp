<%@ Component="Ostrakan.Class25" %><% InitFunction1 %><% InitFunction2 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>采集信息管理 - 列表采集网站添加</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
<script type="text/javascript">
function check() {
  var f = document.forms['form'].elements;
  var need = [['web','请输入网站名称！'],['url','请输入网站网址！'],['gather_url','请输入采集网址！'],['next_page','请输入翻页进制！'],['error_html','请输入报错HTML标识！'],['cyc_border','请输入循环标识！'],['cyc_border_sn','请输入循环始数！'],['url_start','请输入网址开始HTML标识！'],['url_end','请输入网址结束HTML标识！'],['title_start','请输入标题开始HTML标识！'],['title_end','请输入标题结束HTML标识！']];
  for (var i = 0; i < need.length; i++) {
    if (f[need[i][0]].value == '') { alert(need[i][1]); f[need[i][0]].focus(); return false; }
  }
  return true;
}
</script>
</head>
<body class="content">
<h3>采集信息管理 - 列表采集网站添加</h3>
<form accept-charset="gb18030" name="form" id="form" method="post" action="gather_list_web_add_ok.asp" onsubmit="return check()">
<table class="form">
<tr><th>网站名称：</th><td><input type="text" name="web" size="70" value=""></td></tr>
<tr><th>网站网址：</th><td><input type="text" name="url" size="70" value=""></td></tr>
<tr><th>采集网址：</th><td><input type="text" name="gather_url" size="70" value=""> <span class="hint">关键字用 [keyword]，页码用 [page]</span></td></tr>
<tr><th>翻页进制：</th><td><input type="text" name="next_page" size="5" maxlength="5" value="1"> <span class="hint">页码 1、2、3 的网站填 1</span></td></tr>
<tr><th>网页编码：</th><td><select name="charset"><option value="utf-8">国际编码(UTF-8)</option><option value="gb2312" selected>简体中文(GB2312)</option><option value="big5">繁体中文(Big5)</option><option value="iso-8859-1">西欧</option></select></td></tr>
<tr><th>报错标识：</th><td><textarea name="error_html" cols="50" rows="3"></textarea> <span class="hint">只有找不到结果的页面才有的HTML</span></td></tr>
<tr><th>循环标识：</th><td><textarea name="cyc_border" cols="50" rows="3"></textarea> <span class="hint">每条结果上方出现一次的HTML</span></td></tr>
<tr><th>循环始数：</th><td><input type="text" name="cyc_border_sn" size="5" maxlength="5" value="1"> <span class="hint">&lt;[SN]&gt; 的起始数，一般为 1</span></td></tr>
<tr><th>图片开始：</th><td><textarea name="image_start" cols="50" rows="3"></textarea></td></tr>
<tr><th>图片结束：</th><td><textarea name="image_end" cols="50" rows="3"></textarea></td></tr>
<tr><th>网址开始：</th><td><textarea name="url_start" cols="50" rows="3"></textarea></td></tr>
<tr><th>网址结束：</th><td><textarea name="url_end" cols="50" rows="3"></textarea></td></tr>
<tr><th>网址过滤：</th><td><textarea name="url_filtration" cols="50" rows="3"></textarea> <span class="hint">用逗号分隔，小写</span></td></tr>
<tr><th>虚拟路径：</th><td><input type="text" name="v_url" size="60" value=""> <span class="hint">加在相对网址前面</span></td></tr>
<tr><th>标题开始：</th><td><textarea name="title_start" cols="50" rows="3"></textarea></td></tr>
<tr><th>标题结束：</th><td><textarea name="title_end" cols="50" rows="3"></textarea></td></tr>
<tr><th>标题过滤：</th><td><textarea name="title_filtration" cols="50" rows="3"></textarea> <span class="hint">用逗号分隔，小写</span></td></tr>
<tr><th>描述开始：</th><td><textarea name="content_start" cols="50" rows="3"></textarea></td></tr>
<tr><th>描述结束：</th><td><textarea name="content_end" cols="50" rows="3"></textarea></td></tr>
<tr><th>描述过滤：</th><td><textarea name="content_filtration" cols="50" rows="3"></textarea> <span class="hint">用逗号分隔，小写</span></td></tr>
<tr><th></th><td><input type="submit" value="确定" class="button"> <input type="reset" value="重写" class="button"></td></tr>
</table>
</form>
<p class="hint">HTML标识在网页中的顺序：循环标识、图片开始、图片结束、网址开始、网址结束、标题开始、标题结束、描述开始、描述结束，每个在前一个的下方。</p>
</body>
</html>
